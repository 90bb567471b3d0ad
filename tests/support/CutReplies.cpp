#include "support/CutReplies.h"

#include <platform/Internet.h>

namespace test_support {
namespace {

using enum ConnectionEnd;
using enum CutReply::Over;

constexpr DWORD kAborted = ERROR_INTERNET_CONNECTION_ABORTED;
constexpr DWORD kInvalid = ERROR_HTTP_INVALID_SERVER_RESPONSE;
constexpr const char* kWhole = "";
constexpr const char* kTwoLengths = "the reply has two different lengths";
constexpr const char* kTooLong = "the reply's length is not below 2^63";
constexpr const char* kNoNumber = "the reply's length is not a number";
constexpr const char* kBadChunk = "the reply's chunks are malformed";
constexpr const char* kNoReply = "the server closed the connection without a reply";
constexpr const char* kCutCoding = "incomplete: the reply's compressed data is cut off";
constexpr const char* kBrokenCoding = "the reply's compression is broken";

// "<p>whole page", packed.
const std::string kPage = "<p>whole page";
const std::string kDeflated("\xb3\x29\xb0\x2b\xcf\xc8\xcf\x49\x55\x28\x48\x4c\x4f\x05\x00", 15);
const std::string kGzip = std::string("\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03", 10) + kDeflated +
                          std::string("\xb2\x02\xa4\xd6\x0d\x00\x00\x00", 8);
const std::string kZlib = "\x78\xda" + kDeflated + "\x20\xd1\x04\xc7";
const std::string kBrotli = "\x0b\x06\x80" + kPage + "\x03";
const std::string kGzipInBrotli = std::string("\x0b\x10\x80", 3) + kGzip + "\x03";

std::string Reply(const std::string& fields, const std::string& body) {
    return "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n" + fields + "\r\n" + body;
}
std::string Length(const std::string& length, const std::string& body = "1234567") {
    return Reply("Content-Length: " + length + "\r\n", body);
}
std::string Chunked(const std::string& body) {
    return Reply("Transfer-Encoding: chunked\r\n", body);
}
std::string Coded(const std::string& coding, const std::string& body) {
    return Reply("Content-Encoding: " + coding +
                     "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n",
                 body);
}
std::string Without(std::size_t count, const std::string& text) {
    return text.substr(0, text.size() - count);
}

} // namespace

const std::vector<CutReply>& CutReplies() {
    static const std::string chunk = "4\r\n1234\r\n";
    static const std::string both = "Content-Length: 3\r\nTransfer-Encoding: chunked\r\n";
    static const std::vector<CutReply> replies = {
        // Nothing but the end of the connection tells the end.
        {"end", http, told, Reply("", "1234567"), kWhole, 0, "1234567", true},
        {"tls end", https, told, Reply("", "1234567"), kWhole, 0, "1234567", true},
        {"tls cut", https, cut, Reply("", "1234567"),
         "incomplete: the secure connection broke off after 7 bytes", kAborted, "1234567", true},
        {"reset", http, reset, "", "the connection broke off before there was a reply", kAborted,
         "", false},
        // The end is told, and reached.
        {"tls cut behind", https, cut, Length("7"), kWhole, 0, "1234567", true},
        {"tls cut empty", https, cut, Length("0", ""), kWhole, 0, "", true},
        {"tls cut chunks", https, cut, Chunked(chunk + "0\r\n\r\n"), kWhole, 0, "1234", true},
        {"equal", http, told, Length("7, 007\r\nContent-Length:  7 "), kWhole, 0, "1234567", true},
        {"more", http, told, Length("5"), kWhole, 0, "12345", true},
        {"chunks first", http, told, Reply(both + "Content-Length: 4\r\n", chunk + "0\r\n\r\n"),
         kWhole, 0, "1234", true},
        // Or not reached.
        {"no body", http, told, Length("10", ""), "incomplete: 0 of 10 bytes", kAborted, "", false},
        {"short", http, told, Length("10"), "incomplete: 7 of 10 bytes", kAborted, "1234567",
         false},
        {"tls short", https, told, Length("10"), "incomplete: 7 of 10 bytes", kAborted, "1234567",
         false},
        {"tls cut short", https, cut, Length("10"), "incomplete: 7 of 10 bytes", kAborted,
         "1234567", false},
        {"largest", http, told, Length("9223372036854775807"),
         "incomplete: 7 of 9223372036854775807 bytes", kAborted, "1234567", true},
        {"cut chunk", http, told, Chunked("a\r\n1234567"),
         "incomplete: the connection broke off after 7 bytes", kAborted, "1234567", true},
        {"last chunk", https, told, Chunked(chunk),
         "incomplete: the connection broke off after 4 bytes", kAborted, "1234", true},
        {"cut end", https, cut, Chunked(chunk + "0\r\n"),
         "incomplete: the secure connection broke off after 4 bytes", kAborted, "1234", true},
        // Lengths that are none.
        {"two lengths", http, told, Length("7\r\nContent-Length: 9"), kTwoLengths, kInvalid, "",
         false},
        {"two in a list", http, told, Length("7, 9"), kTwoLengths, kInvalid, "", false},
        {"2^63", http, told, Length("9223372036854775808"), kTooLong, kInvalid, "", false},
        {"beyond", http, told, Length("99999999999999999999999"), kTooLong, kInvalid, "", false},
        {"negative", http, told, Length("-7"), kNoNumber, kInvalid, "", false},
        {"plus", http, told, Length("+7"), kNoNumber, kInvalid, "", false},
        {"junk", http, told, Length("7 bytes"), kNoNumber, kInvalid, "", false},
        {"missing", http, told, Length(""), kNoNumber, kInvalid, "", false},
        // Chunks that are none.
        {"no size", http, told, Chunked("\r\n1234"), kBadChunk, kInvalid, "", true},
        {"negative size", http, told, Chunked(chunk + "-4\r\n1234\r\n"), kBadChunk, kInvalid,
         "1234", true},
        {"chunk of 2^63", http, told, Chunked(chunk + "8000000000000000\r\n1234"), kBadChunk,
         kInvalid, "1234", true},
        {"chunk beyond", http, told, Chunked(chunk + "10000000000000004\r\n1234\r\n0\r\n\r\n"),
         kBadChunk, kInvalid, "1234", true},
        {"too long a chunk", http, told, Chunked("2\r\n1234\r\n0\r\n\r\n"), kBadChunk, kInvalid,
         "12", true},
        // Content codings.
        {"gzip", http, told, Coded("gzip", kGzip), kWhole, 0, kPage, true},
        {"zlib", http, told, Coded("deflate", kZlib), kWhole, 0, kPage, true},
        {"bare deflate", http, told, Coded("Deflate", kDeflated), kWhole, 0, kPage, true},
        {"brotli", http, told, Coded("br", kBrotli), kWhole, 0, kPage, true},
        {"empty gzip", http, told, Coded("gzip", ""), kWhole, 0, "", true},
        {"cut gzip", http, told, Coded("gzip", Without(1, kGzip)), kCutCoding, kAborted, kPage,
         true},
        {"cut gzip head", http, told, Coded("gzip", kGzip.substr(0, 5)), kCutCoding, kAborted, "",
         true},
        {"cut deflate", http, told, Coded("deflate", Without(3, kDeflated)), kCutCoding, kAborted,
         "<p>whole pa", true},
        {"cut brotli", http, told, Coded("br", Without(1, kBrotli)), kCutCoding, kAborted, kPage,
         true},
        {"no gzip", http, told, Coded("gzip", "no gzip"), kBrokenCoding, kInvalid, "", true},
        {"no brotli", http, told, Coded("br", "\xFF\xFF\xFF"), kBrokenCoding, kInvalid, "", true},
        {"wrong sum", http, told, Coded("gzip", Without(8, kGzip) + "12345678"), kBrokenCoding,
         kInvalid, kPage, true},
        // Heads that are none.
        {"nothing", http, told, "", kNoReply, kAborted, "", false},
        {"tls nothing", https, told, "", kNoReply, kAborted, "", false},
        {"tls cut nothing", https, cut, "", kNoReply, kAborted, "", false},
        {"garbage", http, told, "\x01\x02 this is no HTTP\r\n\r\n", "the reply is not HTTP",
         kInvalid, "", false},
        {"cut status", http, told, "HTTP/1.1 20", kNoReply, kAborted, "", false},
        {"cut head", http, told, "HTTP/1.1 200 OK\r\nContent-Le",
         "the connection broke off in the head of the reply", kAborted, "", false},
        {"switch", http, told, "HTTP/1.1 101 Switching Protocols\r\nUpgrade: other\r\n\r\n<html>",
         "the server switches to another protocol", kInvalid, "", false},
        {"transfer coding", http, told, Reply("Transfer-Encoding: gzip\r\n", kGzip),
         "the reply has a transfer coding that nobody asked for", kInvalid, "", false},
    };
    return replies;
}

CutReplyServers::CutReplyServers() : m_trust("ZRHTTP_CA_FILE", m_home.Path("trusted.pem").c_str()) {
    m_home.WriteFile("trusted.pem", m_authority.Pem());
}

} // namespace test_support
