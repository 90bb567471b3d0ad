#include "zrhttp/FetchRequest.h"

#include <algorithm>
#include <string_view>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Errors.h"
#include "zrhttp/HttpGrammar.h"
#include "zrhttp/InputFile.h"

namespace zrhttp {
namespace {

constexpr std::string_view kContentType = "Content-Type";
// The type of a form's fields, which the library sends where the caller names no headers.
constexpr const char* kFormContentType = "Content-Type: application/x-www-form-urlencoded";

bool NamesContentType(const std::string& header) {
    const CString name(std::string_view(header).substr(0, header.find(':')));
    return name.CompareNoCase(CString(kContentType)) == 0;
}

CString JoinedHeaders(const FetchOptions& options) {
    CString joined;
    if (std::none_of(options.headers.begin(), options.headers.end(), NamesContentType))
        joined = kFormContentType;
    for (std::size_t index = 0; index < options.headers.size(); ++index) {
        const CString line = CheckedHeaderLine("--header", options.headers, index);
        if (!joined.IsEmpty()) joined += "\r\n";
        joined += line;
    }
    return joined;
}

std::optional<std::string> Body(const FetchOptions& options) {
    if (!options.post && !options.postFile) return std::nullopt;
    std::string body = options.post ? std::string(AnsiFromArgument("--post", *options.post).View())
                                    : ReadInput(*options.postFile);
    // The library takes an empty body for none, and would send a GET request.
    if (body.empty()) throw UsageError("the body to post is empty");
    return body;
}

CString CheckedUrl(const std::string& url) {
    if (url.empty()) throw UsageError("URL: is empty");
    if (HasControls(url)) throw UsageError("URL: contains a control character");
    return AnsiFromArgument("URL", url);
}

CString CheckedContentType(const std::string& type) {
    const std::string_view view = type;
    const auto slash = view.find('/');
    if (slash == view.npos || !IsToken(view.substr(0, slash)) || !IsToken(view.substr(slash + 1)))
        throw UsageError("--content-type: expected a type such as application/x-foo");
    return CString(view);
}

} // namespace

Traffic TrafficOf(std::string_view url) {
    constexpr std::string_view kSimulate = "SIM:";
    const bool isSimulated = url.starts_with(kSimulate);
    if (isSimulated) url.remove_prefix(kSimulate.size());
    return {isSimulated, url.starts_with("SAVE:")};
}

FetchRequest MakeFetchRequest(const FetchOptions& options) {
    FetchRequest request;
    request.url = CheckedUrl(options.url);
    request.headers = JoinedHeaders(options);
    if (options.contentType) request.contentType = CheckedContentType(*options.contentType);
    for (const std::string& title : options.titles)
        request.titles.Add(AnsiFromArgument("--title", title));
    request.body = Body(options);
    return request;
}

} // namespace zrhttp
