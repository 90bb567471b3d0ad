#include <platform/BrowserSurroundings.h>

#include "browser/chromium/ChromiumBrowser.h"
#include "browser/chromium/ChromiumProcess.h"
#include "internet/FurtherCertificates.h"
#include "window/BrowserWindow.h"

namespace platform {

CString ChromiumFileName() {
    return CString(FindChromium().value_or(""));
}

bool ChromiumSendsPostsOnce(CString& strError) {
    std::string error;
    const bool isOnce = ChromiumBrowser::SendsPostsOnce(error);
    strError = CString(error);
    return isOnce;
}

CString CertificateFileProblem() {
    return CString(ReadFurtherCertificates().problem);
}

CString BrowserDisplayName() {
    const auto display = Display::Open();
    return display ? CString(display->Name()) : CString();
}

} // namespace platform
