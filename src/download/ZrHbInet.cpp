#include <ZrHbInet.h>

#include <memory>

#include "download/DownloadState.h"
#include "download/DownloadWorker.h"
#include "download/FileDownload.h"
#include "errors/LibraryModule.h"
#include "errors/LogRecord.h"
#include "siblings/ZrAbResourceHandling.h"

class CZrHbInet_Impl {
public:
    virtual ~CZrHbInet_Impl() = default;

    int Download(EZrAbAppGroup eGroup, const CString& strUrl, const CString& strFile) {
        ZRHB_TRACE("DownloadFile(" + strUrl + ", " + strFile + ")", eGroup);
        Store(eGroup, strUrl, strFile);
        m_request.window = nullptr;
        m_request.isFailureMessageWanted = false;
        const DownloadRequest request = m_request;
        return FileDownload(request).InternetReadFileInSynchMode() == DownloadResult::complete
                   ? TRUE
                   : FALSE;
    }

    int Start(EZrAbAppGroup eGroup, const CString& strUrl, const CString& strFile, CWnd* pWnd,
              bool isFailureMessageWanted) {
        ZRHB_TRACE("StartDownloadFile(" + strUrl + ", " + strFile + ")", eGroup);
        Store(eGroup, strUrl, strFile);
        m_request.window = pWnd ? pWnd->GetSafeHwnd() : nullptr;
        m_request.isFailureMessageWanted = isFailureMessageWanted;
        // A copy: the wait serves messages, whose handlers may start another one.
        const DownloadRequest request = m_request;
        return StartDownloadWorker(request) ? TRUE : FALSE;
    }

private:
    void Store(EZrAbAppGroup eGroup, const CString& strUrl, const CString& strFile) {
        const CZrAbResourceHandling resources(eGroup, kLibraryModuleName, "");
        CString strFailed, strAdvice;
        strFailed.LoadString(2);
        strAdvice.LoadString(3);
        m_request.failureText = strFailed + "(URL: " + strUrl + ")\n\n" + strAdvice;
        m_request.closingText.LoadString(1);
        m_request.group = eGroup;
        m_request.url = strUrl;
        m_request.file = strFile;
    }

    DownloadRequest m_request;
};

CZrHbInet::CZrHbInet() {
    DownloadState::Get().Reset();
    CreateImpl(std::make_unique<CZrHbInet_Impl>());
}

CZrHbInet::CZrHbInet(const CZrHbInet& other) {
    DownloadState::Get().Reset();
    CreateCopy(other);
}

CZrHbInet& CZrHbInet::operator=(const CZrHbInet& other) {
    AssignCopy(other);
    return *this;
}

CZrHbInet::~CZrHbInet() {
    if (const auto worker = DownloadState::Get().LastWorker()) worker->Wait(INFINITE);
    DeleteImpl();
}

void CZrHbInet::DestroyImpl(CZrHbInet_Impl* pImpl) {
    std::default_delete<CZrHbInet_Impl>()(pImpl);
}

int CZrHbInet::DownloadFile(EZrAbAppGroup eGroup, const CString& strUrl, const CString& strFile) {
    return GetImpl() ? GetImpl()->Download(eGroup, strUrl, strFile) : 0;
}

int CZrHbInet::DownloadFile(const CString& strUrl, const CString& strFile) {
    return DownloadFile(eAppGroup_2, strUrl, strFile);
}

int CZrHbInet::StartDownloadFile(EZrAbAppGroup eGroup, const CString& strUrl,
                                 const CString& strFile, CWnd* pWnd) {
    return GetImpl() ? GetImpl()->Start(eGroup, strUrl, strFile, pWnd, false) : 0;
}

int CZrHbInet::StartDownloadFile(const CString& strUrl, const CString& strFile, CWnd* pWnd) {
    return StartDownloadFile(eAppGroup_2, strUrl, strFile, pWnd);
}

int CZrHbInet::StartDownloadFile2(EZrAbAppGroup eGroup, const CString& strUrl,
                                  const CString& strFile, CWnd* pWnd) {
    return GetImpl() ? GetImpl()->Start(eGroup, strUrl, strFile, pWnd, true) : 0;
}

int CZrHbInet::StopDownloadFile() {
    if (!GetImpl()) return 0;
    DownloadState::Get().RequestStop();
    return 1;
}
