#include "internet/ContentDecoder.h"

#include <algorithm>

#include <platform/String.h>

#include "internet/BrotliDecoder.h"
#include "internet/FieldList.h"
#include "internet/GzipDecoder.h"

namespace platform {
namespace {

constexpr std::size_t kPieceBytes = 16 * 1024;
// One is the rule. A few bytes that were packed often enough would keep a reader busy for ever.
constexpr std::size_t kMaxCodings = 2;

} // namespace

std::unique_ptr<ContentDecoder> ContentDecoder::For(const std::string& coding) {
    const CString name(coding);
    if (name.CompareNoCase("br") == 0) return std::make_unique<BrotliDecoder>();
    if (name.CompareNoCase("deflate") == 0) return std::make_unique<GzipDecoder>(true);
    if (name.CompareNoCase("gzip") == 0 || name.CompareNoCase("x-gzip") == 0)
        return std::make_unique<GzipDecoder>();
    return nullptr;
}

ContentCodings::ContentCodings(const std::string& names) {
    for (const std::string_view name : ListMembers(names)) {
        if (name.empty() || CString(name).CompareNoCase("identity") == 0) continue;
        m_decoders.push_back(ContentDecoder::For(std::string(name)));
        if (m_decoders.size() > kMaxCodings) break;
    }
    if (m_decoders.size() > kMaxCodings) m_decoders.back() = nullptr;
}

// The coding that was applied last is undone first.
bool ContentCodings::Decode(std::size_t left, std::string_view bytes, const Sink& sink) {
    if (left == 0) return sink(bytes);
    const auto& decoder = m_decoders[left - 1];
    if (!decoder) m_problem = kUnaskedCoding;
    if (!m_problem.empty()) return false;
    char piece[kPieceBytes];
    while (const std::size_t count = decoder->Decode(bytes, piece, sizeof piece))
        if (!Decode(left - 1, {piece, count}, sink)) return false;
    if (decoder->IsBroken()) m_problem = kBrokenCoding;
    return m_problem.empty();
}

std::string ContentCodings::Problem() const {
    if (!m_problem.empty()) return m_problem;
    const auto isCut = [](const auto& decoder) { return decoder && !decoder->IsComplete(); };
    return std::any_of(m_decoders.begin(), m_decoders.end(), isCut) ? kCutCoding : "";
}

} // namespace platform
