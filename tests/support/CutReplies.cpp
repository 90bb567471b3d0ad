#include "support/CutReplies.h"

namespace test_support {
namespace {

using enum CutReply::By;

constexpr const char* kWhole = "";
constexpr const char* kTwoLengths = "the reply has two different lengths";
constexpr const char* kTooLong = "the reply's length is not below 2^63";
constexpr const char* kNoNumber = "the reply's length is not a number";
constexpr const char* kBadChunk = "the reply's chunks are malformed";
constexpr const char* kCut = "incomplete: the connection broke off after 4 bytes";
constexpr const char* kTlsCut = "incomplete: the secure connection broke off after 4 bytes";
constexpr const char* kShort = "incomplete: 4 of 10 bytes";
constexpr const char* kNoReply = "the server closed the connection without a reply";
constexpr const char* kCutCoding = "incomplete: the reply's compressed data is cut off";
constexpr const char* kBrokenCoding = "the reply's compression is broken";

const std::string kPage = "<p>whole page"; // packed:
const std::string kDeflated("\xb3\x29\xb0\x2b\xcf\xc8\xcf\x49\x55\x28\x48\x4c\x4f\x05\x00", 15);
const std::string kGzip = std::string("\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03", 10) + kDeflated +
                          std::string("\xb2\x02\xa4\xd6\x0d\x00\x00\x00", 8);
const std::string kBrotli = "\x0b\x06\x80" + kPage + "\x03";

const std::string kLine = "X: " + std::string(90'000, 'x') + "\r\n";
const std::string kLengths = "Content-Length: 3\r\nContent-Length: 5\r\n";
const std::string kChunked = "Transfer-Encoding: chunked\r\n";

std::string Reply(const std::string& fields, const std::string& body = "1234") {
    return "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n" + fields + "\r\n" + body;
}
std::string Length(const std::string& length) {
    return Reply("Content-Length: " + length + "\r\n");
}
// Four bytes, and what follows them.
std::string Chunked(const std::string& rest) {
    return Reply(kChunked, "4\r\n1234\r\n" + rest);
}
std::string Coded(const std::string& coding, const std::string& body, std::size_t missing = 0) {
    return Reply("Content-Encoding: " + coding + "\r\n", body.substr(0, body.size() - missing));
}

} // namespace

const std::vector<CutReply>& CutReplies() {
    static const std::vector<CutReply> replies = {
        {"end", http, Reply(""), kWhole, "1234"},
        {"tls end", tls, Reply(""), kWhole, "1234"},
        {"tls cut", tlsCut, Reply(""), kTlsCut, "1234"},
        {"tls cut behind", tlsCut, Length("4"), kWhole, "1234"},
        {"tls cut short", tlsCut, Length("10"), kShort, "1234"},
        {"short", http, Length("10"), kShort, "1234"},
        {"no body", http, Reply("Content-Length: 9\r\n", ""), "incomplete: 0 of 9 bytes"},

        {"equal lengths", http, Length("4, 004\r\nContent-Length:  4 "), kWhole, "1234"},
        {"two lengths", http, Length("4\r\nContent-Length: 9"), kTwoLengths},
        {"two in a list", http, Length("4, 9"), kTwoLengths},
        {"2^63", http, Length("9223372036854775808"), kTooLong},
        {"beyond", http, Length("99999999999999999999999"), kTooLong},
        {"negative", http, Length("-4"), kNoNumber},
        {"junk", http, Length("4 bytes"), kNoNumber},
        {"no length", http, Length(""), kNoNumber},

        {"chunks", tlsCut, Chunked("0\r\n\r\n"), kWhole, "1234"},
        {"lengths, too", http, Reply(kLengths + kChunked, "4\r\n1234\r\n0\r\n\r\n"), kWhole,
         "1234"},
        {"cut chunk", http, Chunked("a\r\n"), kCut, "1234"},
        {"no last chunk", tls, Chunked(""), kCut, "1234"},
        {"cut last chunk", tlsCut, Chunked("0\r\n"), kTlsCut, "1234"},
        {"no size", http, Chunked("\r\n12\r\n0\r\n\r\n"), kBadChunk, "1234"},
        {"negative size", http, Chunked("-4\r\n1234\r\n0\r\n\r\n"), kBadChunk, "1234"},
        {"size of 2^63", http, Chunked("8000000000000000\r\n12"), kBadChunk, "1234"},
        {"size beyond", http, Chunked("10000000000000002\r\n12\r\n0\r\n\r\n"), kBadChunk, "1234"},
        {"too long", http, Chunked("2\r\n1234\r\n0\r\n\r\n"), kBadChunk, "123412"},

        {"gzip", http, Coded("gzip", kGzip), kWhole, kPage},
        {"empty gzip", http, Coded("gzip", ""), kWhole, ""},
        {"bare deflate", http, Coded("Deflate", kDeflated), kWhole, kPage},
        {"brotli", http, Coded("br", kBrotli), kWhole, kPage},
        {"padded brotli", http, Coded("br", kBrotli + std::string(4, '\0')), kWhole, kPage},
        {"cut gzip", http, Coded("gzip", kGzip, 1), kCutCoding, kPage},
        {"cut gzip head", http, Coded("gzip", kGzip, 28), kCutCoding},
        {"cut deflate", http, Coded("deflate", kDeflated, 3), kCutCoding, "<p>whole pa"},
        {"cut brotli", http, Coded("br", kBrotli, 1), kCutCoding, kPage},
        {"no gzip", http, Coded("gzip", "no gzip"), kBrokenCoding},
        {"no brotli", http, Coded("br", "\xFF\xFF\xFF"), kBrokenCoding},
        {"wrong sum", http, Coded("gzip", kGzip.substr(0, 25) + "12345678"), kBrokenCoding, kPage},

        {"reset", httpReset, "", "the connection broke off before there was a reply"},
        {"nothing", http, "", kNoReply},
        {"tls cut nothing", tlsCut, "", kNoReply},
        {"garbage", http, "\x01\x02 this is no HTTP\r\n\r\n", "the reply is not HTTP"},
        {"cut status", http, "HTTP/1.1 20", kNoReply},
        {"cut head", http, "HTTP/1.1 200 OK\r\nContent-Le",
         "the connection broke off in the head of the reply"},
        {"endless head", http, Reply(kLine + kLine + kLine),
         "the head of the reply is larger than 262144 bytes"},
        {"long line", http, Reply("X: " + std::string(200'000, 'x') + "\r\n"),
         "a line of the reply's head is too long"},
        {"switch", http, "HTTP/1.1 101 Switching Protocols\r\nUpgrade: other\r\n\r\n<html>",
         "the server switches to another protocol"},
        {"transfer coding", http, Reply("Transfer-Encoding: gzip\r\n", kGzip),
         "the reply has a transfer coding that nobody asked for"},
    };
    return replies;
}

std::string CutReplyServers::Serve(RawServer& server, const CutReply& reply) {
    const ConnectionEnd end = reply.by == tlsCut      ? ConnectionEnd::cut
                              : reply.by == httpReset ? ConnectionEnd::reset
                                                      : ConnectionEnd::told;
    server.Set("/", reply.bytes, end);
    return server.Url("/");
}

} // namespace test_support
