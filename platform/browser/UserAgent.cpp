// The user-agent text of the browser control's engine.

#include <platform/UrlMoniker.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <string>

#include <platform/BrowserSurroundings.h>
#include <platform/Diagnostics.h>
#include <platform/Settings.h>

#include "browser/builtin/UserAgent.h"
#include "browser/chromium/ChromiumApplication.h"

namespace platform {
namespace {

// Process-wide: a browser is started once to be asked.
class ChromiumUserAgents {
public:
    static ChromiumUserAgents& Get() {
        static ChromiumUserAgents agents;
        return agents;
    }

    // Empty when this Chromium does not tell.
    std::string Of(const std::string& fileName) {
        const std::lock_guard lock(m_lock);
        std::string& known = m_texts[fileName];
        if (known.empty()) known = Ask();
        return known;
    }

private:
    static std::string Ask() {
        std::string error;
        const auto application =
            ChromiumApplication::Start(ChromiumApplication::Windows::none, error);
        if (application) return application->UserAgent();
        ReportDiagnostic(Severity::failure, CString(std::move(error)));
        return {};
    }

    std::mutex m_lock;
    std::map<std::string, std::string> m_texts;
};

std::string ControlUserAgent() {
    const CString engine = GetSetting("ZRHTTP_CONTROL").value;
    if (engine == "builtin") return kBuiltinUserAgent;
    if (engine != "chromium") return {}; // such a control cannot be made either
    return ChromiumUserAgents::Get().Of(std::string(ChromiumFileName().View()));
}

} // namespace
} // namespace platform

HRESULT UrlMkGetSessionOption(DWORD dwOption, void* pBuffer, DWORD nSize, DWORD* pLength, DWORD) {
    *pLength = 0;
    if (dwOption != URLMON_OPTION_USERAGENT) return E_INVALIDARG;
    const std::string text = platform::ControlUserAgent();
    if (text.empty()) return E_FAIL;
    *pLength = static_cast<DWORD>(text.size());
    if (text.size() > nSize) return E_OUTOFMEMORY;
    std::memcpy(pBuffer, text.c_str(), std::min<std::size_t>(text.size() + 1, nSize));
    return S_OK;
}
