// Downloads a file over HTTP or HTTPS, without a browser, and explains failures to the user.
//
//     CZrHbInet inet;
//     if (inet.DownloadFile(eAppGroup_2, "https://www.example.test/list.pdf", "c:\\list.pdf"))
//         ...
//
// Redirects are followed to http and https only; certificates are verified; proxies come from the
// environment. A reply of any status is a file (RFC 9110): its body is written. The target is
// created or emptied when the reply has begun, and holds what had arrived after a failure or a
// stop; it is never removed. Failures are told in the client's log only. All objects of a process
// share one stop request and one last worker. Operations are called on one thread.
#pragma once

#include "ZrAbAppGroup.h"
#include "ZrHbFacade.h"
#include "platform/CWnd.h"
#include "platform/Export.h"
#include "platform/String.h"

class CZrHbInet_Impl;

ZRHB_EXPORT_BEGIN

class CZrHbInet : public CZrHbFacade<CZrHbInet, CZrHbInet_Impl> {
public:
    enum EZrHbErrorServerResponse {
        eErrorServerResponse_NoResponse = 1,  // the Internet connection is among the causes
        eErrorServerResponse_BadResponse = 2, // it is not
    };

    // What a worker sends to its window. wParam is 0 and lParam too unless said otherwise.
    enum EZrHbMessage : UINT {
        eMessage_Progress = 6024, // lParam: per cent; only when the length is known
        eMessage_Stopped = 6025,
        eMessage_Ended = 6026,  // complete, or failed after StartDownloadFile
        eMessage_Failed = 6027, // failed after StartDownloadFile2
    };

    // Withdraws the stop request of the process and forgets its last worker.
    CZrHbInet();
    CZrHbInet(const CZrHbInet& other);
    CZrHbInet& operator=(const CZrHbInet& other);
    // Waits until the last worker of the process has ended, handling the messages that it sends.
    ~CZrHbInet() override;

    // Downloads on the calling thread; TRUE when the file is complete: as long as the reply said
    // or, when it did not say, as long as what came (that this was cut or malformed is told in the
    // log). Without a group: group 2.
    int DownloadFile(EZrAbAppGroup eGroup, const CString& strUrl, const CString& strFile);
    int DownloadFile(const CString& strUrl, const CString& strFile);

    // Downloads on a worker thread with a copy of the request. pWnd: the window that gets the
    // messages (sent, so that its thread must look for messages), or null for none. Waits up to
    // 5000 ms for the last worker to end, then starts beside it. FALSE when the URL is empty or
    // not valid or no thread could be started. The final message is withheld while the window is
    // hidden, and is not sent when it stays so for 5000 ms.
    int StartDownloadFile(EZrAbAppGroup eGroup, const CString& strUrl, const CString& strFile,
                          CWnd* pWnd);
    int StartDownloadFile(const CString& strUrl, const CString& strFile, CWnd* pWnd);
    // As StartDownloadFile; a failure is announced as such.
    int StartDownloadFile2(EZrAbAppGroup eGroup, const CString& strUrl, const CString& strFile,
                           CWnd* pWnd);
    // Asks all downloads of the process to stop and does not wait. The request stands, and fails
    // every later download, until the next CZrHbInet is constructed. Any thread. Returns 1.
    int StopDownloadFile();

    // The likely causes of a failed communication, in German, one a line; empty for any other
    // number. Any thread.
    static CString GetReasonForCommunicationError(EZrAbAppGroup eGroup,
                                                  EZrHbErrorServerResponse eErrorServerResponse);

private:
    friend CZrHbFacade;
    static void DestroyImpl(CZrHbInet_Impl* pImpl);
};

ZRHB_EXPORT_END
