#include "browser/BrowserClasses.h"

#include <platform/Browser.h>
#include <platform/Settings.h>

#include "browser/builtin/BuiltinBrowser.h"

namespace platform {
namespace {

HRESULT CreateByEngine(const char* pszSetting, REFIID iid, void** ppObject) {
    if (GetSetting(pszSetting).value == "builtin")
        return MakeObject<BuiltinBrowser>()->QueryInterface(iid, ppObject);
    *ppObject = nullptr;
    return REGDB_E_CLASSNOTREG;
}

} // namespace

void RegisterBrowserClasses() {
    static const ClassRegistration control(CLSID_WebBrowser, [](REFIID iid, void** ppObject) {
        return CreateByEngine("ZRHTTP_CONTROL", iid, ppObject);
    });
    static const ClassRegistration application(
        CLSID_InternetExplorer, [](REFIID iid, void** ppObject) {
            return CreateByEngine("ZRHTTP_APPLICATION", iid, ppObject);
        });
}

} // namespace platform
