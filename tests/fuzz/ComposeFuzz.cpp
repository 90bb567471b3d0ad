// What is composed comes apart again into the same fields, for all names that need no escape.
// Input: a byte (its lowest bit makes a secret field, the next one removes a field again), a name,
// LF, a value up to the next byte 0x01, and so on.

#include <utility>
#include <vector>

#include <ZrHbDataTransmit.h>

#include "Check.h"

namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;

void Expect(std::string_view& rest, std::string_view text) {
    Check(rest.starts_with(text));
    rest.remove_prefix(text.size());
}

std::string WithoutDelimiters(std::string_view name) {
    std::string plain(name);
    for (char& ch : plain)
        if (std::string_view("\"\r\n&=").find(ch) != std::string_view::npos) ch = '_';
    return plain;
}

void Set(Fields& fields, const std::string& name, std::string_view value) {
    for (auto& [knownName, knownValue] : fields)
        if (knownName == name) {
            knownValue = value;
            return;
        }
    fields.emplace_back(name, value);
}

// The composer and what it should hold; a text counts up to its first NUL byte.
Fields Fill(CZrHbDataTransmit& form, std::string_view input) {
    Fields fields;
    while (!input.empty()) {
        const char flags = input.front();
        input.remove_prefix(1);
        std::string_view pair = TakeUntil(input, "\x01");
        const std::string name = WithoutDelimiters(TakeUntil(pair, "\n"));
        const std::string cutName = name.c_str();
        const int result =
            form.SetField(CString(name), CString(pair),
                          static_cast<CZrHbDataTransmit::EZrHbDataConfidentialityType>(flags & 1));
        Check((result == 1) == !cutName.empty());
        if (!cutName.empty()) Set(fields, cutName, TakeUntil(pair, std::string_view("\0", 1)));
        if (!(flags & 2)) continue;
        form.RemoveField(CString(name));
        std::erase_if(fields, [&](const auto& field) { return field.first == cutName; });
    }
    return fields;
}

Fields ReadMultipart(std::string_view body, const std::string& boundary) {
    Fields fields;
    if (body.empty()) return fields;
    Expect(body, "--" + boundary);
    while (body != "--\r\n") {
        Expect(body, "\r\nContent-Disposition: form-data; name=\"");
        const std::string_view name = TakeUntil(body, "\"\r\n\r\n");
        fields.emplace_back(name, TakeUntil(body, "\r\n--" + boundary));
        Check(!body.empty());
    }
    return fields;
}

Fields ReadPairs(std::string_view text) {
    Fields fields;
    if (text.empty()) return fields;
    Expect(text, "?");
    // An empty pair behind the last "&" would be lost, if there were one.
    Check(!text.empty() && text.back() != '&');
    while (!text.empty()) {
        std::string_view pair = TakeUntil(text, "&");
        const std::string name(TakeUntil(pair, "="));
        fields.emplace_back(name, UrlDecoded(pair));
    }
    return fields;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = AsText(data, size);
    std::string boundary = "B";
    while (input.find(boundary) != input.npos)
        boundary += 'B';
    CZrHbDataTransmit form;
    form.SetBoundary(CString(boundary)); // so that nothing pauses for a new one
    const Fields fields = Fill(form, input);
    Check(ReadMultipart(form.GetMultipartData().View(), boundary) == fields);
    Check(ReadPairs(form.GetURLEncodedData(1).View()) == fields);

    const CString masked = form.GetMultipartData(CZrHbDataTransmit::eRequestDataType_Masked);
    Check(ReadMultipart(masked.View(), boundary).size() == fields.size());
    return 0;
}
