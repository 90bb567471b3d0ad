#include "browser/BrowserClasses.h"

#include <platform/Browser.h>
#include <platform/Diagnostics.h>
#include <platform/Settings.h>

#include "browser/builtin/BuiltinBrowser.h"
#include "browser/chromium/ChromiumBrowser.h"

namespace platform {
namespace {

using Factory = HRESULT (*)(REFIID iid, void** ppObject);

// The builtin engine, or Chromium in the given role, as the setting says.
HRESULT CreateByEngine(const char* pszSetting, Factory chromium, REFIID iid, void** ppObject) {
    *ppObject = nullptr;
    const CString engine = GetSetting(pszSetting).value;
    if (engine == "builtin") return MakeObject<BuiltinBrowser>()->QueryInterface(iid, ppObject);
    if (engine == "chromium") return chromium(iid, ppObject);
    ReportDiagnostic(Severity::failure,
                     CString(pszSetting) + " names no browser engine: " + engine);
    return REGDB_E_CLASSNOTREG;
}

} // namespace

void RegisterBrowserClasses() {
    static const ClassRegistration control(CLSID_WebBrowser, [](REFIID iid, void** ppObject) {
        return CreateByEngine("ZRHTTP_CONTROL", &ChromiumBrowser::CreateControl, iid, ppObject);
    });
    static const ClassRegistration application(
        CLSID_InternetExplorer, [](REFIID iid, void** ppObject) {
            return CreateByEngine("ZRHTTP_APPLICATION", &ChromiumBrowser::CreateApplication, iid,
                                  ppObject);
        });
}

} // namespace platform
