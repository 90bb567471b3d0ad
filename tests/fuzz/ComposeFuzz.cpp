// What is composed comes apart again into the same fields, for all names that need no escape.
// Input: a byte (its lowest bit makes a secret field, the next one removes a field again), a name,
// LF, a value up to the next byte 0x01, and so on.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <ZrHbDataTransmit.h>

#include "Check.h"

namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;

std::string_view TakeUpTo(std::string_view& rest, std::string_view end) {
    const std::size_t found = rest.find(end);
    const std::string_view taken = rest.substr(0, found);
    rest.remove_prefix(found == rest.npos ? rest.size() : found + end.size());
    return taken;
}

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
        std::string_view pair = TakeUpTo(input, "\x01");
        const std::string name = WithoutDelimiters(TakeUpTo(pair, "\n"));
        const std::string cutName = name.c_str();
        const int result =
            form.SetField(CString(name), CString(pair),
                          static_cast<CZrHbDataTransmit::EZrHbDataConfidentialityType>(flags & 1));
        Check((result == 1) == !cutName.empty());
        if (!cutName.empty()) Set(fields, cutName, TakeUpTo(pair, std::string_view("\0", 1)));
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
        const std::string_view name = TakeUpTo(body, "\"\r\n\r\n");
        fields.emplace_back(name, TakeUpTo(body, "\r\n--" + boundary));
        Check(!body.empty());
    }
    return fields;
}

std::string DecodeValue(std::string_view encoded) {
    std::string value;
    while (!encoded.empty()) {
        const char ch = encoded.front();
        encoded.remove_prefix(1);
        if (ch == '%') {
            Check(encoded.size() >= 2);
            value += static_cast<char>(std::stoi(std::string(encoded.substr(0, 2)), nullptr, 16));
            encoded.remove_prefix(2);
        } else {
            value += ch == '+' ? ' ' : ch;
        }
    }
    return value;
}

Fields ReadPairs(std::string_view text) {
    Fields fields;
    if (text.empty()) return fields;
    Expect(text, "?");
    // An empty pair behind the last "&" would be lost, if there were one.
    Check(!text.empty() && text.back() != '&');
    while (!text.empty()) {
        std::string_view pair = TakeUpTo(text, "&");
        const std::string name(TakeUpTo(pair, "="));
        fields.emplace_back(name, DecodeValue(pair));
    }
    return fields;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
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
