#include "internet/ReplyFraming.h"

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

#include <platform/String.h>

#include "internet/CurlHandles.h"
#include "internet/FieldList.h"

namespace platform {
namespace {

// A list of lengths must name one, over and over.
std::string LengthProblem(std::string_view lengths) {
    std::optional<std::int64_t> first;
    for (const std::string_view digits : ListMembers(lengths)) {
        if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos)
            return kMalformedLength;
        std::int64_t length = 0;
        if (std::from_chars(digits.begin(), digits.end(), length).ec != std::errc())
            return "the reply's length is not below 2^63";
        if (first && *first != length) return "the reply has two different lengths";
        first = length;
    }
    return {};
}

} // namespace

std::string FramingProblem(CURL* easy) {
    const CString coding(JoinedReplyField(easy, "Transfer-Encoding"));
    if (coding.CompareNoCase("chunked") == 0) return {}; // comes before any length
    if (!coding.IsEmpty() && coding.CompareNoCase("identity") != 0)
        return "the reply has a transfer coding that nobody asked for";
    const std::string lengths = JoinedReplyField(easy, "Content-Length");
    return lengths.empty() ? std::string() : LengthProblem(lengths);
}

} // namespace platform
