#include "zrhttp/MetaEncoding.h"

#include <algorithm>

#include "zrhttp/Encodings.h"

namespace zrhttp {
namespace {

constexpr std::size_t kPrescanned = 1024; // bytes
constexpr std::string_view kSpace = " \t\n\f\r";

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char ch) {
        return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch + ('a' - 'A')) : ch;
    });
    return lower;
}

bool IsLetter(char ch) {
    return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z');
}

// A text that is read from its beginning to its end.
class Reader {
public:
    explicit Reader(std::string_view text) : m_rest(text) {}

    bool IsEnd() const { return m_rest.empty(); }
    char Peek() const { return m_rest.empty() ? '\0' : m_rest.front(); }
    std::string_view Rest() const { return m_rest; }
    void Skip(std::size_t count) { m_rest.remove_prefix(std::min(count, m_rest.size())); }
    void SkipAll(std::string_view characters) { Skip(m_rest.find_first_not_of(characters)); }
    // To the text, or to the end where there is none.
    void SkipTo(std::string_view text) { Skip(m_rest.find(text)); }
    std::string_view TakeUntil(std::string_view characters) {
        const std::string_view taken = m_rest.substr(0, m_rest.find_first_of(characters));
        Skip(taken.size());
        return taken;
    }
    // What stands between two equal quotes, or up to one of the characters.
    std::string_view TakeValue(std::string_view characters) {
        if (Peek() != '"' && Peek() != '\'') return TakeUntil(characters);
        const char quote = Peek();
        Skip(1);
        const std::string_view taken = m_rest.substr(0, m_rest.find(quote));
        Skip(taken.size() + 1);
        return taken;
    }

private:
    std::string_view m_rest;
};

struct Attribute {
    std::string name;
    std::string_view value;
};

// The next attribute of the tag that is being read; nothing at the tag's end.
std::optional<Attribute> NextAttribute(Reader& reader) {
    reader.SkipAll(" \t\n\f\r/");
    if (reader.IsEnd() || reader.Peek() == '>') return std::nullopt;
    Attribute attribute;
    if (reader.Peek() == '=') { // belongs to the name there
        attribute.name = "=";
        reader.Skip(1);
    }
    attribute.name += LowerCase(reader.TakeUntil("= \t\n\f\r/>"));
    reader.SkipAll(kSpace);
    if (reader.Peek() != '=') return attribute;
    reader.Skip(1);
    reader.SkipAll(kSpace);
    attribute.value = reader.TakeValue(" \t\n\f\r>");
    return attribute;
}

// The charset in a content type such as "text/html; charset=utf-8".
std::string LabelFromContentType(std::string_view content) {
    constexpr std::string_view kName = "charset";
    const std::string lower = LowerCase(content);
    Reader reader(lower);
    for (reader.SkipTo(kName); !reader.IsEnd(); reader.SkipTo(kName)) {
        reader.Skip(kName.size());
        reader.SkipAll(kSpace);
        if (reader.Peek() != '=') continue;
        reader.Skip(1);
        reader.SkipAll(kSpace);
        return std::string(reader.TakeValue("; \t\n\f\r"));
    }
    return {};
}

std::optional<std::string> EncodingOfMeta(Reader& reader) {
    bool namesContentType = false;
    std::string fromContent;
    std::optional<std::string> label;
    while (const auto attribute = NextAttribute(reader)) {
        if (attribute->name == "http-equiv")
            namesContentType = LowerCase(attribute->value) == "content-type";
        else if (attribute->name == "content" && fromContent.empty())
            fromContent = LabelFromContentType(attribute->value);
        else if (attribute->name == "charset" && !label)
            label = attribute->value;
    }
    if (!label && namesContentType) label = fromContent;
    if (!label) return std::nullopt;
    const auto encoding = EncodingFromLabel(*label);
    // The declaration could be read as ASCII.
    return encoding && encoding->starts_with("UTF-16") ? "UTF-8" : encoding;
}

bool IsMeta(std::string_view text) {
    return LowerCase(text.substr(0, 5)) == "<meta" && text.size() > 5 &&
           (kSpace.find(text[5]) != kSpace.npos || text[5] == '/');
}

bool IsTag(std::string_view text) {
    const std::size_t name = text.starts_with("</") ? 2 : 1;
    return text.size() > name && IsLetter(text[name]);
}

void SkipTag(Reader& reader) {
    reader.TakeUntil(" \t\n\f\r>");
    while (NextAttribute(reader)) {
    }
}

} // namespace

std::optional<std::string> EncodingFromMeta(std::string_view page) {
    Reader reader(page.substr(0, kPrescanned));
    for (reader.SkipTo("<"); !reader.IsEnd(); reader.SkipTo("<")) {
        const std::string_view rest = reader.Rest();
        if (rest.starts_with("<!--")) {
            reader.Skip(2); // "<!-->" is a whole comment
            reader.SkipTo("-->");
        } else if (IsMeta(rest)) {
            reader.Skip(5);
            if (auto encoding = EncodingOfMeta(reader)) return encoding;
        } else if (IsTag(rest)) {
            SkipTag(reader);
        } else if (rest.starts_with("<!") || rest.starts_with("</") || rest.starts_with("<?")) {
            reader.SkipTo(">");
        } else {
            reader.Skip(1);
        }
    }
    return std::nullopt;
}

} // namespace zrhttp
