// The text tools as functions from text to text (namespace onepass), and once more with each rule
// written down as one replacement after the other, however slow (namespace literal): what the
// one-pass tools are compared with.
#pragma once

#include <algorithm>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <ZrHbHtmlTools.h>

namespace onepass {

inline std::string RemoveTags(std::string_view text) {
    CString page(text);
    CZrHbHtmlTools::HtmlPageRemoveTags(page);
    return std::string(page.View());
}

inline std::string RemoveSections(std::string_view text, std::string_view start,
                                  std::string_view end) {
    CString page(text);
    CZrHbHtmlTools::HtmlPageRemoveSections(page, CString(start), CString(end));
    return std::string(page.View());
}

inline std::string Decode(std::string_view text, bool format) {
    CString page(text);
    CZrHbHtmlTools::HtmlPageDecode(page, format ? 2 : 0);
    return std::string(page.View());
}

inline std::string PureText(std::string_view text, bool compact) {
    CString page(text);
    CZrHbHtmlTools::HtmlPageMakePureText(page, compact ? 2 : 0);
    return std::string(page.View());
}

} // namespace onepass

namespace literal {

// The names for the characters 160 to 255, in this order.
inline const std::vector<std::string>& Latin1Names() {
    static const std::vector<std::string> kNames = [] {
        std::istringstream names(
            "nbsp iexcl cent pound curren yen brvbar sect uml copy ordf laquo not shy reg macr deg "
            "plusmn sup2 sup3 acute micro para middot cedil sup1 ordm raquo frac14 frac12 frac34 "
            "iquest Agrave Aacute Acirc Atilde Auml Aring AElig Ccedil Egrave Eacute Ecirc Euml "
            "Igrave Iacute Icirc Iuml ETH Ntilde Ograve Oacute Ocirc Otilde Ouml times Oslash "
            "Ugrave Uacute Ucirc Uuml Yacute THORN szlig agrave aacute acirc atilde auml aring "
            "aelig ccedil egrave eacute ecirc euml igrave iacute icirc iuml eth ntilde ograve "
            "oacute ocirc otilde ouml divide oslash ugrave uacute ucirc uuml yacute thorn yuml");
        return std::vector<std::string>(std::istream_iterator<std::string>(names), {});
    }();
    return kNames;
}

inline std::string Upper(std::string_view text) {
    std::string upper(text);
    for (char& ch : upper)
        if (ch >= 'a' && ch <= 'z') ch = static_cast<char>(ch - 32);
    return upper;
}

inline void Replace(std::string& text, std::string_view from, std::string_view to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
}

inline void ReplaceUntilNoneIsLeft(std::string& text, std::string_view from, std::string_view to) {
    while (text.find(from) != std::string::npos)
        Replace(text, from, to);
}

inline std::map<std::string, int> Entities() {
    std::map<std::string, int> entities{
        {"amp", 38}, {"lt", 60}, {"gt", 62}, {"quot", 34}, {"nbsp", 38}};
    int value = 160;
    for (const std::string& name : Latin1Names())
        entities.emplace(name, value++);
    for (const char* name : {"uml", "ordf", "not", "macr", "sup1", "ordm"})
        entities.erase(name);
    return entities;
}

inline void DecodeNumber(std::string& page, std::size_t& at) {
    std::size_t end = at + 2;
    int value = 0;
    for (; end < page.size() && page[end] >= '0' && page[end] <= '9'; ++end)
        value = (value * 10 + page[end] - '0') % 256;
    if (page.substr(end, 1) == ";") ++end;
    const std::string byte(value == 0 ? 0 : 1, static_cast<char>(value));
    page.replace(at, end - at, byte);
    at += byte.size();
}

inline void DecodeName(std::string& page, std::size_t& at) {
    static const std::map<std::string, int> kEntities = Entities();
    for (const auto& [name, value] : kEntities) {
        if (page.compare(at + 1, name.size(), name) != 0) continue;
        const bool semicolon = page.substr(at + 1 + name.size(), 1) == ";";
        page.replace(at, 1 + name.size() + semicolon, 1, static_cast<char>(value));
        break;
    }
    ++at;
}

inline std::string RemoveTags(std::string_view page) {
    std::string text;
    bool inTag = false;
    for (const char ch : page) {
        if (ch == '<')
            text += ' ';
        else if (!inTag)
            text += ch;
        inTag = ch == '<' || (inTag && ch != '>');
    }
    return text;
}

inline std::string RemoveSections(std::string page, std::string_view start, std::string_view end) {
    while (!end.empty()) {
        const std::string upper = Upper(page);
        const std::size_t first = upper.find(Upper(start));
        if (first == std::string::npos) break;
        const std::size_t last = upper.find(Upper(end), first);
        if (last == std::string::npos) break;
        page.erase(first, last + end.size() - first);
    }
    return page;
}

inline std::string Decode(std::string_view text, bool format) {
    std::string page(text);
    for (std::size_t at = 0; (at = page.find('&', at)) != std::string::npos;)
        page.substr(at + 1, 1) == "#" ? DecodeNumber(page, at) : DecodeName(page, at);
    Replace(page, "&", "");
    if (!format) return page;
    Replace(page, "\n", " ");
    Replace(page, "\r", " ");
    Replace(page, "<br>", "\n");
    Replace(page, "<BR>", "\n");
    ReplaceUntilNoneIsLeft(page, "  ", " ");
    ReplaceUntilNoneIsLeft(page, "\n ", "\n");
    ReplaceUntilNoneIsLeft(page, " \n", "\n");
    return page;
}

inline std::string PureText(std::string page, bool compact) {
    for (const std::string name : {"head", "style", "script"})
        page = RemoveSections(page, "<" + name, "</" + name + ">");
    for (const std::string tag : {"</H1>", "</H2>", "</H3>", "</h1>", "</h2>", "</h3>"})
        Replace(page, tag, tag + "\n");
    Replace(page, "<br>", "\n");
    page = Decode(RemoveTags(page), false);
    Replace(page, "\1", "");
    Replace(page, "\t", "  ");
    Replace(page, "\r\n", "\n");
    ReplaceUntilNoneIsLeft(page, " \n", "\n");
    ReplaceUntilNoneIsLeft(page, "\n\n\n", "\n\n");
    if (compact) ReplaceUntilNoneIsLeft(page, "\n\n", "\n");
    ReplaceUntilNoneIsLeft(page, "\n ", "\n");
    ReplaceUntilNoneIsLeft(page, "  ", " ");
    page.erase(page.find_last_not_of(" \t\r\n\v\f") + 1);
    page.erase(0, page.find_first_not_of(" \t\r\n\v\f"));
    return page + "\n";
}

} // namespace literal
