// Names of header fields (RFC 9110, RFC 9111, RFC 2616), for CZrHbHttpHeaders and whoever writes
// header blocks.
#pragma once

#include "platform/Export.h"

ZRHB_EXPORT_BEGIN

namespace ZrHbHeader {

inline constexpr const char* kAccept = "Accept";
inline constexpr const char* kAcceptCharset = "Accept-Charset";
inline constexpr const char* kAcceptEncoding = "Accept-Encoding";
inline constexpr const char* kAcceptLanguage = "Accept-Language";
inline constexpr const char* kAcceptRanges = "Accept-Ranges";
inline constexpr const char* kAge = "Age";
inline constexpr const char* kAllow = "Allow";
inline constexpr const char* kAuthorization = "Authorization";
inline constexpr const char* kCacheControl = "Cache-Control";
inline constexpr const char* kConnection = "Connection";
inline constexpr const char* kContentEncoding = "Content-Encoding";
inline constexpr const char* kContentLanguage = "Content-Language";
inline constexpr const char* kContentLength = "Content-Length";
inline constexpr const char* kContentLocation = "Content-Location";
inline constexpr const char* kContentMD5 = "Content-MD5";
inline constexpr const char* kContentRange = "Content-Range";
inline constexpr const char* kContentType = "Content-Type";
inline constexpr const char* kCookie = "Cookie";
inline constexpr const char* kDate = "Date";
inline constexpr const char* kETag = "ETag";
inline constexpr const char* kExpect = "Expect";
inline constexpr const char* kExpires = "Expires";
inline constexpr const char* kFrom = "From";
inline constexpr const char* kHost = "Host";
inline constexpr const char* kIfMatch = "If-Match";
inline constexpr const char* kIfModifiedSince = "If-Modified-Since";
inline constexpr const char* kIfNoneMatch = "If-None-Match";
inline constexpr const char* kIfRange = "If-Range";
inline constexpr const char* kIfUnmodifiedSince = "If-Unmodified-Since";
inline constexpr const char* kLastModified = "Last-Modified";
inline constexpr const char* kLocation = "Location";
inline constexpr const char* kMaxForwards = "Max-Forwards";
inline constexpr const char* kPragma = "Pragma";
inline constexpr const char* kProxyAuthenticate = "Proxy-Authenticate";
inline constexpr const char* kProxyAuthorization = "Proxy-Authorization";
inline constexpr const char* kRange = "Range";
inline constexpr const char* kReferer = "Referer";
inline constexpr const char* kRetryAfter = "Retry-After";
inline constexpr const char* kServer = "Server";
inline constexpr const char* kTE = "TE";
inline constexpr const char* kTrailer = "Trailer";
inline constexpr const char* kTransferEncoding = "Transfer-Encoding";
inline constexpr const char* kUACPU = "UA-CPU";
inline constexpr const char* kUpgrade = "Upgrade";
inline constexpr const char* kUserAgent = "User-Agent";
inline constexpr const char* kVary = "Vary";
inline constexpr const char* kVia = "Via";
inline constexpr const char* kWarning = "Warning";
inline constexpr const char* kWWWAuthenticate = "WWW-Authenticate";

} // namespace ZrHbHeader

ZRHB_EXPORT_END
