// Undoes content codings (RFC 9110, 8.4.1), and knows whether what came was all of it.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

inline constexpr const char* kBrokenCoding = "the reply's compression is broken";
inline constexpr const char* kUnaskedCoding =
    "the reply is compressed in a way that nobody asked for";
inline constexpr const char* kCutCoding = "incomplete: the reply's compressed data is cut off";

// One coding.
class ContentDecoder {
public:
    virtual ~ContentDecoder() = default;

    // For a name in a Content-Encoding field; null for one that is not known here.
    static std::unique_ptr<ContentDecoder> For(const std::string& coding);

    // Decodes from the front of `input` as much as fits into `room` bytes at `output`, and shortens
    // `input` to what has not been used. Returns the number of bytes written; 0 means that more
    // input is needed, or the end.
    virtual std::size_t Decode(std::string_view& input, void* output, std::size_t room) = 0;

    bool IsBroken() const { return m_isBroken; }
    // Nothing is missing: input may end here.
    bool IsComplete() const { return m_isComplete; }

protected:
    bool m_isComplete = true;
    bool m_isBroken = false;
};

// All codings of a reply.
class ContentCodings {
public:
    static constexpr const char* kAccepted = "gzip, deflate, br";

    // The names, in the order in which the codings were applied; empty without any.
    explicit ContentCodings(const std::string& names = {});

    // Hands on what the bytes make. False when the sink wants no more, or they are broken.
    using Sink = std::function<bool(std::string_view)>;
    bool Decode(std::string_view bytes, const Sink& sink) {
        return Decode(m_decoders.size(), bytes, sink);
    }
    // Why the reply is not whole, should it end here; empty when it is.
    std::string Problem() const;

private:
    bool Decode(std::size_t left, std::string_view bytes, const Sink& sink);

    std::vector<std::unique_ptr<ContentDecoder>> m_decoders; // null: not known
    std::string m_problem;
};

} // namespace platform
