#include "zrhttp/CharacterSets.h"

#include <platform/CodePage.h>

#include "zrhttp/Errors.h"
#include "zrhttp/TerminalEncoding.h"

namespace zrhttp {

bool IsUtf8(std::string_view bytes) {
    return platform::Utf8FromWide(platform::WideFromUtf8(bytes)) == bytes;
}

CString AnsiFromArgument(std::string_view argument, std::string_view text) {
    const std::string utf8 = Utf8FromTerminal(text);
    const CString ansi = platform::AnsiFromUtf8(utf8);
    if (platform::Utf8FromAnsi(ansi.View()) != utf8)
        throw UsageError(std::string(argument) +
                         ": contains characters outside code page 1252 or invalid " +
                         TerminalEncoding());
    return ansi;
}

std::string TextFromBytes(std::string_view bytes) {
    return IsUtf8(bytes) ? std::string(bytes) : platform::Utf8FromAnsi(bytes);
}

} // namespace zrhttp
