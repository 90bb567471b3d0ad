#include "browser/common/FileUrl.h"

#include <algorithm>
#include <filesystem>

#include <curl/curl.h>

#include <platform/CodePage.h>
#include <platform/UserPaths.h>

namespace platform {
namespace {

std::string PercentDecoded(const std::string& text) {
    int length = 0;
    char* decoded =
        curl_easy_unescape(nullptr, text.c_str(), static_cast<int>(text.size()), &length);
    if (!decoded) return {};
    std::string copy(decoded, static_cast<std::size_t>(length));
    curl_free(decoded);
    return copy;
}

bool HasDrive(const std::string& path) {
    return path.size() >= 4 && path[2] == ':' && path[3] == '/' &&
           ((path[1] >= 'a' && path[1] <= 'z') || (path[1] >= 'A' && path[1] <= 'Z'));
}

} // namespace

bool FileNameOfUrl(const std::string& url, std::string& fileName, std::string& error) {
    constexpr std::size_t prefixLength = 7; // file://
    std::string path = url.substr(std::min(prefixLength, url.size()));
    path = PercentDecoded(path.substr(0, path.find_first_of("?#")));
    if (path.empty() || path.find('\0') != std::string::npos) {
        error = "the file name is malformed";
        return false;
    }
    fileName = path;
    if (!HasDrive(path)) return true;
    CString local;
    if (!LocalFileName(AnsiFromUtf8(path.substr(1)), local)) {
        error = "the path leads outside the user's drive";
        return false;
    }
    fileName = local.GetString();
    return true;
}

std::string UrlOfFileName(const std::string& fileName) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    constexpr std::string_view plain = "-._~/";
    std::string url = "file://";
    for (const char ch : fileName) {
        const auto byte = static_cast<unsigned char>(ch);
        const bool isAlphanumeric =
            (ch >= '0' && ch <= '9') || (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z');
        if (isAlphanumeric || plain.find(ch) != std::string_view::npos)
            url += ch;
        else
            url.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
    return url;
}

std::string ReasonNotAFile(const std::string& fileName) {
    std::error_code problem;
    if (std::filesystem::is_regular_file(fileName, problem)) return {};
    const char* reason =
        std::filesystem::exists(fileName, problem) ? "not a file: " : "file not found: ";
    return reason + std::filesystem::path(fileName).filename().string();
}

} // namespace platform
