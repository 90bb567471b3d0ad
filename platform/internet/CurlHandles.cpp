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

} // namespace platform
