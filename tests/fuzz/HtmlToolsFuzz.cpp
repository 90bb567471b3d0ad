// Any bytes as a page: the text tools give what their rules give one by one.

#include <string>
#include <string_view>

#include "../parse/LiteralHtmlTools.h"
#include "Check.h"

namespace {

void CheckTagContent(const std::string& text) {
    char* position = nullptr;
    const char* from = text.c_str();
    CString content;
    while (CZrHbHtmlTools::GetInfoBetweenHtmlTags(from, "b", content, 1, 0, &position)) {
        Check(position > from && position <= text.c_str() + text.size());
        Check(std::string_view(from, static_cast<std::size_t>(position - from)).ends_with("</b>"));
        from = position;
    }
    Check(position == from);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 4096) return 0; // the rules one by one take long
    const std::string text(data, data + size);
    Check(onepass::RemoveTags(text) == literal::RemoveTags(text));
    for (const bool flag : {false, true}) {
        Check(onepass::Decode(text, flag) == literal::Decode(text, flag));
        Check(onepass::PureText(text, flag) == literal::PureText(text, flag));
    }
    // The first two lines are the start text and the end text of the sections.
    std::string_view page = text;
    const std::string_view start = TakeUntil(page, "\n");
    const std::string_view end = TakeUntil(page, "\n");
    Check(onepass::RemoveSections(page, start, end) ==
          literal::RemoveSections(std::string(page), start, end));
    CheckTagContent(text);
    return 0;
}
