#include "browser/builtin/HtmlScan.h"

#include <algorithm>
#include <array>
#include <map>

#include <platform/CodePage.h>

#include "browser/builtin/GumboTree.h"
#include "browser/builtin/Limits.h"
#include "browser/common/HeaderBlock.h"
#include "browser/common/PageUrl.h"

namespace platform {
namespace {

// Elements that never hold others, or that their successor closes: they do not pile up.
constexpr std::array<std::string_view, 29> kFlatElements{
    "area", "base",  "br",     "col",   "colgroup", "dd",   "dt",       "embed",  "frame", "hr",
    "img",  "input", "keygen", "li",    "link",     "meta", "optgroup", "option", "p",     "param",
    "rp",   "rt",    "source", "tbody", "td",       "th",   "tr",       "track",  "wbr"};

std::string TagName(std::string_view text) {
    std::string name;
    for (const char ch : text.substr(0, 16)) {
        const char lower = ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
        const bool isNameCharacter = (lower >= 'a' && lower <= 'z') ||
                                     (!name.empty() && ((ch >= '0' && ch <= '9') || ch == '-'));
        if (!isNameCharacter) break;
        name += lower;
    }
    return name;
}

// An estimate from the tags alone, without comments and scripts being told apart: it only has to
// keep documents away from the tree that are deep on purpose.
bool IsTooDeep(std::string_view html) {
    std::map<std::string, std::size_t, std::less<>> open;
    std::size_t depth = 0;
    for (std::size_t at = html.find('<'); at < html.size(); at = html.find('<', at + 1)) {
        const bool isEnd = html.substr(at + 1).starts_with('/');
        const std::string name = TagName(html.substr(at + (isEnd ? 2 : 1)));
        if (name.empty() ||
            std::binary_search(kFlatElements.begin(), kFlatElements.end(), std::string_view(name)))
            continue;
        std::size_t& count = open[name];
        if (isEnd && count > 0) {
            --count;
            --depth;
        } else if (!isEnd) {
            ++count;
            if (++depth > kMaxElementDepth) return true;
        }
    }
    return false;
}

bool IsUtf8(std::string_view bytes) {
    return Utf8FromWide(WideFromUtf8(bytes)) == bytes;
}

std::u16string Utf16Of(std::string_view bytes, bool isBigEndian) {
    std::u16string text;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const auto first = static_cast<unsigned char>(bytes[at]);
        const auto second = static_cast<unsigned char>(bytes[at + 1]);
        text += static_cast<char16_t>(isBigEndian ? first << 8 | second : second << 8 | first);
    }
    return text;
}

// Tags are ASCII in all encodings that matter here; the rest decides only how a URL with other
// characters in it is read.
std::string ToUtf8(std::string_view bytes) {
    const bool isAscii = std::none_of(
        bytes.begin(), bytes.end(), [](char ch) { return static_cast<unsigned char>(ch) >= 0x80; });
    if (isAscii) return std::string(bytes);
    if (bytes.starts_with("\xFF\xFE")) return Utf8FromWide(Utf16Of(bytes.substr(2), false));
    if (bytes.starts_with("\xFE\xFF")) return Utf8FromWide(Utf16Of(bytes.substr(2), true));
    return IsUtf8(bytes) ? std::string(bytes) : Utf8FromAnsi(bytes);
}

class Scanner {
public:
    explicit Scanner(const std::string& pageUrl)
        : m_isFilePage(SchemeOf(pageUrl) == "file"), m_base(pageUrl) {}

    void Walk(const GumboNode& root) {
        // Document order without recursion: children are put on the stack last first.
        std::vector<const GumboNode*> pending{&root};
        while (!pending.empty()) {
            const GumboNode& node = *pending.back();
            pending.pop_back();
            const GumboVector* children = Visit(node);
            for (unsigned index = children ? children->length : 0; index > 0; --index)
                pending.push_back(static_cast<const GumboNode*>(children->data[index - 1]));
        }
    }

    HtmlScan Result() const {
        HtmlScan scan;
        for (const std::string& reference : m_frames)
            if (auto url = ResolveReference(m_base, reference); url && MayLeadTo(*url))
                scan.frames.push_back(std::move(*url));
        if (!m_refresh) return scan;
        scan.refresh = m_refresh;
        auto target = ResolveReference(m_base, m_refresh->reference);
        if (m_refresh->reference.empty()) return scan;
        if (target && MayLeadTo(*target))
            scan.refresh->reference = std::move(*target);
        else
            scan.refresh.reset();
        return scan;
    }

private:
    // The children that belong to the document; a template's do not.
    const GumboVector* Visit(const GumboNode& node) {
        if (node.type == GUMBO_NODE_DOCUMENT) return &node.v.document.children;
        if (node.type != GUMBO_NODE_ELEMENT) return nullptr;
        if (node.v.element.tag_namespace == GUMBO_NAMESPACE_HTML) VisitElement(node.v.element);
        return &node.v.element.children;
    }

    void VisitElement(const GumboElement& element) {
        switch (element.tag) {
        case GUMBO_TAG_BASE:
            VisitBase(element);
            break;
        case GUMBO_TAG_META:
            VisitMeta(element);
            break;
        case GUMBO_TAG_FRAME:
        case GUMBO_TAG_IFRAME:
            VisitFrame(element);
            break;
        default:
            break;
        }
    }

    static std::optional<std::string> Attribute(const GumboElement& element, const char* pszName) {
        const GumboAttribute* attribute = gumbo_get_attribute(&element.attributes, pszName);
        return attribute ? std::optional<std::string>(attribute->value) : std::nullopt;
    }

    void VisitBase(const GumboElement& element) {
        const auto reference = Attribute(element, "href");
        if (m_hasBase || !reference) return;
        m_hasBase = true; // the first one counts, even when it is of no use
        auto base = ResolveReference(m_base, *reference);
        if (base && MayLeadTo(*base)) m_base = std::move(*base);
    }

    void VisitMeta(const GumboElement& element) {
        const auto name = Attribute(element, "http-equiv");
        const auto content = Attribute(element, "content");
        if (!m_refresh && name && content && EqualsIgnoringCase(*name, "refresh"))
            m_refresh = ParseRefresh(*content);
    }

    void VisitFrame(const GumboElement& element) {
        const auto source = Attribute(element, "src");
        const bool hasOwnText = element.tag == GUMBO_TAG_IFRAME && Attribute(element, "srcdoc");
        if (source && !hasOwnText && m_frames.size() < kMaxFrames &&
            source->find_first_not_of(" \t\n\f\r") != std::string::npos)
            m_frames.push_back(*source);
    }

    // Pages of the network never reach local files.
    bool MayLeadTo(const std::string& url) const {
        return IsHttpUrl(url) || (m_isFilePage && SchemeOf(url) == "file");
    }

    const bool m_isFilePage;
    std::string m_base;
    bool m_hasBase = false;
    std::vector<std::string> m_frames;
    std::optional<RefreshRule> m_refresh;
};

// Most pages have neither; a search is far cheaper than a tree.
bool MayHoldAnything(std::string_view html) {
    const auto holds = [html](std::string_view word) {
        return std::search(html.begin(), html.end(), word.begin(), word.end(), [](char a, char b) {
                   return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
               }) != html.end();
    };
    return holds("frame") || holds("http-equiv");
}

} // namespace

HtmlScan ScanHtml(std::string_view bytes, const std::string& pageUrl, std::string& problem) {
    if (bytes.size() > kMaxScannedBytes) {
        problem = "the document is too large to look for frames";
        return {};
    }
    const std::string html = ToUtf8(bytes);
    if (!MayHoldAnything(html)) return {};
    Scanner scanner(pageUrl);
    if (IsTooDeep(html))
        problem = "the document is nested too deeply to look for frames";
    else if (!VisitGumboTree(html, [&](const GumboNode& root) { scanner.Walk(root); }))
        problem = "the document has too many elements to look for frames";
    return problem.empty() ? scanner.Result() : HtmlScan{};
}

} // namespace platform
