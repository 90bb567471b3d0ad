#include "compose/UserAgentText.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "parse/AsciiText.h"

namespace {

constexpr DWORD kUsualSize = 2048; // bytes
// The length that a browser tells is how much is allocated: a faulty one must not take gigabytes.
constexpr DWORD kLargestSize = 1024 * 1024;
// Shorter texts are kept whole.
constexpr std::size_t kShortestWithComment = 5;

constexpr const char* kClient = "VELTRUM e-banking Software ";
constexpr const char* kNoComment = "(compatible)";

struct ToldText {
    HRESULT result = S_OK;
    DWORD length = 0;                // as told
    std::optional<std::string> text; // when the room was enough
};

ToldText Ask(const TextQuery& query, DWORD size) {
    ToldText answer;
    std::string buffer(size, '\0');
    answer.result = query(buffer.data(), size, &answer.length);
    const bool isAnswer = answer.result == S_OK || answer.result == E_OUTOFMEMORY;
    if (!isAnswer || answer.length > size) return answer;
    buffer.resize(answer.length);
    buffer.resize(std::min(buffer.find('\0'), buffer.size())); // the length may count the NUL
    answer.text = std::move(buffer);
    return answer;
}

std::string_view CommentOf(std::string_view text) {
    if (text.size() < kShortestWithComment) return text;
    const std::size_t open = text.find('(');
    const bool isComment = open != std::string_view::npos && open > 0 && text.back() == ')';
    return isComment ? text.substr(open) : std::string_view();
}

} // namespace

std::string AnswerOf(const TextQuery& query) {
    ToldText answer = Ask(query, kUsualSize);
    const bool needsRoom = answer.result != S_OK && answer.length > kUsualSize;
    if (needsRoom && answer.length < kLargestSize) answer = Ask(query, answer.length + 1);
    return std::move(answer.text).value_or("");
}

CString VeltrumUserAgent(const std::string& browser) {
    const std::string_view comment = CommentOf(Trimmed(browser));
    return kClient + (comment.empty() ? CString(kNoComment) : CString(comment));
}
