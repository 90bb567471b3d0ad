#include "zrhttp/HttpStatus.h"

namespace zrhttp {
namespace {

struct StatusPhrase {
    int status;
    const char* phrase;
};

// RFC 9110, section 15; RFC 6585; RFC 7725.
constexpr StatusPhrase kPhrases[] = {
    {400, "Bad Request"},
    {401, "Unauthorized"},
    {402, "Payment Required"},
    {403, "Forbidden"},
    {404, "Not Found"},
    {405, "Method Not Allowed"},
    {406, "Not Acceptable"},
    {407, "Proxy Authentication Required"},
    {408, "Request Timeout"},
    {409, "Conflict"},
    {410, "Gone"},
    {411, "Length Required"},
    {412, "Precondition Failed"},
    {413, "Content Too Large"},
    {414, "URI Too Long"},
    {415, "Unsupported Media Type"},
    {416, "Range Not Satisfiable"},
    {417, "Expectation Failed"},
    {421, "Misdirected Request"},
    {422, "Unprocessable Content"},
    {426, "Upgrade Required"},
    {428, "Precondition Required"},
    {429, "Too Many Requests"},
    {431, "Request Header Fields Too Large"},
    {451, "Unavailable For Legal Reasons"},
    {500, "Internal Server Error"},
    {501, "Not Implemented"},
    {502, "Bad Gateway"},
    {503, "Service Unavailable"},
    {504, "Gateway Timeout"},
    {505, "HTTP Version Not Supported"},
    {511, "Network Authentication Required"},
};

} // namespace

std::string HttpStatusText(int status) {
    const std::string number = std::to_string(status);
    for (const StatusPhrase& entry : kPhrases)
        if (entry.status == status) return number + " " + entry.phrase;
    return number;
}

} // namespace zrhttp
