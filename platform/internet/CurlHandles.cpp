#include "internet/CurlHandles.h"

#include <string_view>

namespace platform {

void ResetEasy(CURL* easy) {
    // The library's own reset forgets the list of cookie files without freeing it.
    curl_easy_setopt(easy, CURLOPT_COOKIEFILE, nullptr);
    curl_easy_reset(easy);
}

void AppendTo(CurlList& list, const std::string& line) {
    curl_slist* extended = curl_slist_append(list.get(), line.c_str());
    if (!extended) return;
    static_cast<void>(list.release());
    list.reset(extended);
}

std::string ReplyField(CURL* easy, const char* pszName) {
    curl_header* field = nullptr;
    if (curl_easy_header(easy, pszName, 0, CURLH_HEADER, -1, &field) != CURLHE_OK) return {};
    const std::string_view value = field->value;
    return std::string(value.substr(0, value.find_last_not_of(" \t\r\n") + 1));
}

std::string JoinedReplyField(CURL* easy, const char* pszName, unsigned origin) {
    std::string values;
    curl_header* field = nullptr;
    for (std::size_t index = 0;
         curl_easy_header(easy, pszName, index, origin, -1, &field) == CURLHE_OK; ++index)
        values += (index > 0 ? ", " : "") + std::string(field->value);
    return values;
}

} // namespace platform
