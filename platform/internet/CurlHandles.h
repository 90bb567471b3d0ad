// Owners of the transfer library's handles.
#pragma once

#include <memory>
#include <string>

#include <curl/curl.h>

namespace platform {

struct CurlEasyCleanup {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
using CurlEasy = std::unique_ptr<CURL, CurlEasyCleanup>;

struct CurlMultiCleanup {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
using CurlMulti = std::unique_ptr<CURLM, CurlMultiCleanup>;

struct CurlShareCleanup {
    void operator()(CURLSH* share) const { curl_share_cleanup(share); }
};
using CurlShare = std::unique_ptr<CURLSH, CurlShareCleanup>;

struct CurlListCleanup {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using CurlList = std::unique_ptr<curl_slist, CurlListCleanup>;

// Back to the state of a new handle; its connections, cookies and share stay.
void ResetEasy(CURL* easy);
void AppendTo(CurlList& list, const std::string& line);
// The value of the last reply's header field; empty without one.
std::string ReplyField(CURL* easy, const char* pszName);
// Those of all fields of that name, joined by ", " (RFC 9110, 5.2). origin: CURLH_...
std::string JoinedReplyField(CURL* easy, const char* pszName, unsigned origin = CURLH_HEADER);

} // namespace platform
