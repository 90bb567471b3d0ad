#include "support/ScriptedBackend.h"

namespace test_support {

namespace {

class ScriptedBackend final : public CZrHbHttpGet {
public:
    explicit ScriptedBackend(BackendScript& script) : m_script(script) {}
    ~ScriptedBackend() override { Note("~"); }

    DWORD Connect(HWND, CString& strErr) override {
        Note("Connect");
        strErr = m_script.connectResult ? "back-end text" : "";
        m_script.onConnect();
        return m_script.connectResult;
    }
    DWORD Open(const CString& strUrl, CString& strErr, const void* pPostData, DWORD nPostLen,
               const char* pszHeaders, BOOL bKeepPageOpen) override {
        Note("Open");
        m_script.opened.push_back({strUrl.GetString(), pPostData != nullptr, nPostLen,
                                   pszHeaders ? pszHeaders : "(null)", bKeepPageOpen});
        if (m_script.openResult) strErr = "open text";
        return m_script.openResult;
    }
    DWORD Read(CByteBuffer& page, CString& strErr, DWORD& nLength, CString& strUrl) override {
        const auto result = NextRead(strErr, nLength, strUrl);
        page.Add(result.page.data(), static_cast<DWORD>(result.page.size()));
        return result.code;
    }
    DWORD Read(CString& page, CString& strErr, DWORD& nLength, CString& strUrl) override {
        const auto result = NextRead(strErr, nLength, strUrl);
        page = CString(std::string_view(result.page));
        return result.code;
    }
    void Close() override { Note("Close"); }
    void Disconnect() override { Note("Disconnect"); }
    void PrepareOpenInNewWindow() override { Note("PrepareOpenInNewWindow"); }
    void PutVisible(BOOL bVisible) override { Note("PutVisible " + std::to_string(bVisible)); }
    void KeepThisFrameOpen() override { Note("KeepThisFrameOpen"); }
    IWebBrowser2* Get_IWebBrowser2_ptr(CString& strErr) override {
        strErr.Empty();
        return m_script.browser;
    }

private:
    void Note(const std::string& call) { m_script.calls.push_back(call); }

    BackendScript::ReadResult NextRead(CString& strErr, DWORD& nLength, CString& strUrl) {
        Note("Read");
        m_script.onRead();
        const BackendScript::ReadResult result = m_script.reads.front();
        if (m_script.reads.size() > 1) m_script.reads.pop_front();
        strErr = result.error.c_str();
        nLength = result.length;
        if (result.code == 0) strUrl = result.url.c_str();
        return result;
    }

    BackendScript& m_script;
};

} // namespace

std::unique_ptr<CZrHbHttpGet> ScriptedBackends::Create(BackendKind kind, DWORD nConnectVersion) {
    m_script.kinds.push_back(kind);
    m_script.versions.push_back(nConnectVersion);
    if (m_script.isFactoryEmpty) return nullptr;
    return std::make_unique<ScriptedBackend>(m_script);
}

} // namespace test_support
