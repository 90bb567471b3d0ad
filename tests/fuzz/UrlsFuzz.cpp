// Any text as a URL that a caller typed, as a reference in a page, and as something to be logged.
#include <algorithm>
#include <string>

#include <platform/CodePage.h>
#include <platform/Secrets.h>
#include <platform/Url.h>

#include "Check.h"
#include "browser/common/PageUrl.h"

namespace {

using namespace platform;

bool IsPrintable(std::string_view text) {
    return std::ranges::all_of(text, [](char letter) { return letter > ' ' && letter < 127; });
}

// What stands between "//" and the path.
std::string_view AuthorityOf(std::string_view url) {
    const std::size_t begin = url.find("//");
    if (begin == std::string_view::npos) return {};
    const std::string_view rest = url.substr(begin + 2);
    return rest.substr(0, rest.find_first_of("/?#"));
}

void CheckTyped(std::string_view text) {
    std::string error;
    const auto page = ParsePageUrl(WideFromAnsi(text), error);
    Check(page ? error.empty() : !error.empty());
    if (!page) return;
    Check(IsPrintable(page->url));
    Check(!IsHttpUrl(page->url) || AuthorityOf(page->url).find('@') == std::string_view::npos);
    const auto again = ParsePageUrl(WideFromAnsi(page->url), error);
    Check(again && again->url == page->url && again->user.empty());
}

void CheckReference(std::string_view text) {
    const auto url = ResolveReference("http://host/a/b?c#d", text);
    if (!url) return;
    Check(!IsHttpUrl(*url) || AuthorityOf(*url).find('@') == std::string_view::npos);
    Check(ResolveReference("http://other/", *url) == url);
}

std::string Percent(std::string_view text) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char ch : text) {
        const auto byte = static_cast<unsigned char>(ch);
        encoded += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return encoded;
}

// Whatever it is, encoded as it should be it stays within the mask, and so it does in a nested URL.
void CheckSecret(std::string_view secret) {
    const std::string url = "//" + Percent(secret) + "@host/?pin=" + Percent(secret) + "&a=1";
    Check(MaskSecrets(url) == "//***@host/?pin=***&a=1");
    Check(MaskSecrets("u=" + Percent(url) + "&b=2") ==
          "u=" + Percent("//") + "***" + Percent("@host/?pin=") + "***" + Percent("&a=1") + "&b=2");
}

void CheckLogged(std::string_view text) {
    const CString logged = UrlForLog(text);
    Check(logged.View().find('#') == std::string_view::npos);
    const std::size_t query = logged.View().find('?');
    Check(query == std::string_view::npos || logged.View().substr(query) == "?...");
    Check(MaskSecrets(text).size() <= 3 * text.size()); // "***" for one character
}

void CheckParts(std::string_view text) {
    DWORD service = 0;
    CString server;
    CString object;
    WORD port = 0;
    if (!AfxParseURL(CString(text), service, server, object, port)) {
        Check(server.IsEmpty() && object.IsEmpty());
        return;
    }
    Check(server.View().find_first_of("@/?#") == std::string_view::npos);
    Check(service == AFX_INET_SERVICE_FILE || object.IsEmpty() || object.View().front() == '/');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = AsText(data, size);
    CheckTyped(text);
    CheckReference(text);
    CheckLogged(text);
    CheckSecret(text);
    CheckParts(text.substr(0, text.find('\0')));
    return 0;
}
