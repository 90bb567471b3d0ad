#include "zrhttp/Encodings.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>

#include <iconv.h>
#include <platform/CodePage.h>

namespace zrhttp {
namespace {

constexpr const char* kUtf8 = "UTF-8";
constexpr const char* kAnsi = "WINDOWS-1252";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD"; // U+FFFD

struct Label {
    std::string_view label;
    const char* encoding;
};

constexpr Label kLabels[] = {
    {"utf-8", kUtf8},
    {"utf8", kUtf8},
    {"unicode-1-1-utf-8", kUtf8},
    {"utf-16", "UTF-16LE"},
    {"utf-16le", "UTF-16LE"},
    {"ucs-2", "UTF-16LE"},
    {"unicode", "UTF-16LE"},
    {"utf-16be", "UTF-16BE"},
    {"ascii", kAnsi},
    {"us-ascii", kAnsi},
    {"ansi_x3.4-1968", kAnsi},
    {"iso-8859-1", kAnsi},
    {"latin1", kAnsi},
    {"l1", kAnsi},
    {"cp819", kAnsi},
    {"windows-1252", kAnsi},
    {"latin2", "ISO-8859-2"},
    {"l2", "ISO-8859-2"},
    {"latin3", "ISO-8859-3"},
    {"latin4", "ISO-8859-4"},
    {"cyrillic", "ISO-8859-5"},
    {"arabic", "ISO-8859-6"},
    {"greek", "ISO-8859-7"},
    {"hebrew", "ISO-8859-8"},
    {"iso-8859-8-i", "ISO-8859-8"},
    {"iso-8859-9", "WINDOWS-1254"},
    {"latin5", "WINDOWS-1254"},
    {"l9", "ISO-8859-15"},
    {"latin-9", "ISO-8859-15"},
    {"iso-8859-11", "WINDOWS-874"},
    {"windows-874", "WINDOWS-874"},
    {"tis-620", "WINDOWS-874"},
    {"ibm866", "IBM866"},
    {"cp866", "IBM866"},
    {"koi8-r", "KOI8-R"},
    {"koi8-u", "KOI8-U"},
    {"macintosh", "MACINTOSH"},
    {"gbk", "GB18030"},
    {"gb2312", "GB18030"},
    {"gb18030", "GB18030"},
    {"big5", "BIG5-HKSCS"},
    {"euc-jp", "EUC-JP"},
    {"iso-2022-jp", "ISO-2022-JP"},
    {"shift_jis", "CP932"},
    {"sjis", "CP932"},
    {"windows-31j", "CP932"},
    {"euc-kr", "UHC"},
    {"ks_c_5601-1987", "UHC"},
    {"windows-949", "UHC"},
};

// One spelling of labels that differ in marks only: "ISO8859-15", "iso_8859-15", "x-cp1250".
std::string Canonical(std::string_view label) {
    constexpr std::string_view kSpace = " \t\n\f\r";
    const auto begin = label.find_first_not_of(kSpace);
    if (begin == label.npos) return {};
    std::string text(label.substr(begin, label.find_last_not_of(kSpace) - begin + 1));
    std::transform(text.begin(), text.end(), text.begin(), [](char ch) {
        return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch + ('a' - 'A')) : ch;
    });
    for (const std::string_view start : {"iso8859-", "iso_8859-", "iso8859", "iso_8859"})
        if (text.starts_with(start)) return "iso-8859-" + text.substr(start.size());
    for (const std::string_view start : {"x-cp125", "cp125"})
        if (text.starts_with(start)) return "windows-125" + text.substr(start.size());
    return text;
}

// Of a family of numbered encodings that the system names as the standard does; the number must be
// one of those given.
std::optional<std::string> Numbered(const std::string& label, std::string_view family,
                                    std::initializer_list<std::string_view> numbers) {
    if (!label.starts_with(family)) return std::nullopt;
    const std::string_view number = std::string_view(label).substr(family.size());
    if (std::find(numbers.begin(), numbers.end(), number) == numbers.end()) return std::nullopt;
    std::string encoding = label;
    std::transform(encoding.begin(), encoding.end(), encoding.begin(), [](char ch) {
        return ch >= 'a' && ch <= 'z' ? static_cast<char>(ch - ('a' - 'A')) : ch;
    });
    return encoding;
}

class Converter {
public:
    Converter(const std::string& to, const std::string& from)
        : m_handle(iconv_open(to.c_str(), from.c_str())) {}
    ~Converter() {
        if (IsOpen()) iconv_close(m_handle);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool IsOpen() const { return m_handle != reinterpret_cast<iconv_t>(-1); }

    // Appends what can be converted and cuts it off the input: all of it, or all before the first
    // character that cannot.
    void Convert(std::string_view& input, std::string& output) {
        for (;;) {
            char block[4096];
            char* next = block;
            std::size_t room = sizeof block;
            char* source = const_cast<char*>(input.data()); // only read
            std::size_t left = input.size();
            const std::size_t result = iconv(m_handle, &source, &left, &next, &room);
            const bool isFull = result == static_cast<std::size_t>(-1) && errno == E2BIG;
            output.append(block, next);
            input.remove_prefix(input.size() - left);
            if (!isFull) return;
        }
    }

private:
    iconv_t m_handle;
};

// skip(input) cuts what cannot be converted off the input; `mark` stands for it.
template <class TSkip>
std::string Convert(std::string_view input, const std::string& to, const std::string& from,
                    std::string_view mark, TSkip skip) {
    Converter converter(to, from);
    if (!converter.IsOpen()) throw std::logic_error("no conversion from " + from + " to " + to);
    std::string output;
    output.reserve(input.size());
    for (;;) {
        converter.Convert(input, output);
        if (input.empty()) return output;
        output += mark;
        skip(input);
    }
}

} // namespace

std::optional<std::string> EncodingFromLabel(std::string_view label) {
    const std::string name = Canonical(label);
    const auto* const hit = std::find_if(std::begin(kLabels), std::end(kLabels),
                                         [&](const Label& known) { return known.label == name; });
    if (hit != std::end(kLabels)) return hit->encoding;
    if (auto iso = Numbered(name, "iso-8859-",
                            {"2", "3", "4", "5", "6", "7", "8", "10", "13", "14", "15", "16"}))
        return iso;
    return Numbered(name, "windows-",
                    {"1250", "1251", "1253", "1254", "1255", "1256", "1257", "1258"});
}

bool IsKnownEncoding(const std::string& encoding) {
    return Converter(kUtf8, encoding).IsOpen() && Converter(encoding, kUtf8).IsOpen();
}

std::string Utf8FromEncoding(std::string_view bytes, const std::string& encoding) {
    if (encoding == kAnsi) return platform::Utf8FromAnsi(bytes);
    if (encoding == kUtf8) return platform::Utf8FromWide(platform::WideFromUtf8(bytes));
    const std::size_t unit = encoding.starts_with("UTF-16") ? 2 : 1; // bytes
    return Convert(bytes, kUtf8, encoding, kReplacement, [unit](std::string_view& rest) {
        rest.remove_prefix(std::min(unit, rest.size()));
    });
}

std::string EncodingFromUtf8(std::string_view utf8, const std::string& encoding) {
    const std::string valid = Utf8FromEncoding(utf8, kUtf8);
    if (encoding == kUtf8) return valid;
    return Convert(valid, encoding, kUtf8, "?", [](std::string_view& rest) {
        do
            rest.remove_prefix(1);
        while (!rest.empty() && (rest.front() & 0xC0) == 0x80); // the rest of that character
    });
}

} // namespace zrhttp
