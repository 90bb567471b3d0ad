// Which engine answers for the browser classes.
#pragma once

namespace platform {

// Registers CLSID_WebBrowser and CLSID_InternetExplorer with the class table, once a process. The
// settings ZRHTTP_CONTROL and ZRHTTP_APPLICATION are looked up whenever an object is made; a class
// whose engine is not part of this build answers REGDB_E_CLASSNOTREG.
void RegisterBrowserClasses();

} // namespace platform
