#include "zrhttp/TerminalEncoding.h"

#include <cstdlib>

#include <langinfo.h>
#include <locale.h>

#include "zrhttp/Encodings.h"

namespace zrhttp {
namespace {

constexpr const char* kUtf8 = "UTF-8";

std::string LocaleName() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (const char* value = std::getenv(name); value && *value) return value;
    return "C";
}

// language[_territory][.codeset][@modifier]
std::string CodesetInName(const std::string& locale) {
    const auto dot = locale.find('.');
    if (dot == locale.npos) return kUtf8;
    return locale.substr(dot + 1, locale.find('@', dot) - dot - 1);
}

std::string Codeset(const std::string& name) {
    if (name == "C" || name == "POSIX") return kUtf8;
    const locale_t locale = newlocale(LC_CTYPE_MASK, name.c_str(), nullptr);
    if (!locale) return CodesetInName(name);
    const std::string codeset = nl_langinfo_l(CODESET, locale);
    freelocale(locale);
    return codeset;
}

} // namespace

std::string TerminalEncoding() {
    const std::string codeset = Codeset(LocaleName());
    return IsKnownEncoding(codeset) ? codeset : kUtf8;
}

std::string Utf8FromTerminal(std::string_view text) {
    return Utf8FromEncoding(text, TerminalEncoding());
}

std::string TerminalFromUtf8(std::string_view utf8) {
    return EncodingFromUtf8(utf8, TerminalEncoding());
}

} // namespace zrhttp
