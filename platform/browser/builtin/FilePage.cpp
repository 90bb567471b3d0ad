#include "browser/builtin/FilePage.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

#include <curl/curl.h>

#include <platform/CodePage.h>
#include <platform/UserPaths.h>

#include "browser/builtin/Limits.h"
#include "browser/common/HeaderBlock.h"

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

bool IsDrivePath(const std::string& path) {
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
    if (!IsDrivePath(path)) return true;
    CString local;
    if (!LocalFileName(AnsiFromUtf8(path.substr(1)), local)) {
        error = "the path leads outside the user's drive";
        return false;
    }
    fileName = local.GetString();
    return true;
}

bool ReadFilePage(const std::string& fileName, ReplyBody& body, std::string& error) {
    std::error_code problem;
    // Devices and pipes could block for ever.
    if (!std::filesystem::is_regular_file(fileName, problem)) {
        error = std::filesystem::exists(fileName, problem) ? "not a file: " : "file not found: ";
        error += std::filesystem::path(fileName).filename().string();
        return false;
    }
    std::ifstream file(fileName, std::ios::binary);
    std::vector<char> piece(64 * 1024);
    while (file) {
        file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        body.Append({piece.data(), static_cast<std::size_t>(file.gcount())});
        if (body.Size() > kMaxPageBytes) {
            error = "the page is larger than " + std::to_string(kMaxPageBytes) + " bytes";
            return false;
        }
    }
    if (!file.eof()) error = "the file cannot be read";
    return file.eof();
}

std::string TypeOfFile(const std::string& fileName) {
    using Pair = std::pair<std::string_view, std::string_view>;
    constexpr std::array<Pair, 13> types{{{".htm", "text/html"},
                                          {".html", "text/html"},
                                          {".xhtml", "application/xhtml+xml"},
                                          {".xml", "text/xml"},
                                          {".css", "text/css"},
                                          {".js", "text/javascript"},
                                          {".json", "application/json"},
                                          {".png", "image/png"},
                                          {".jpg", "image/jpeg"},
                                          {".jpeg", "image/jpeg"},
                                          {".gif", "image/gif"},
                                          {".webp", "image/webp"},
                                          {".svg", "image/svg+xml"}}};
    const std::string extension = std::filesystem::path(fileName).extension().string();
    const auto found = std::find_if(types.begin(), types.end(), [&](const Pair& type) {
        return EqualsIgnoringCase(type.first, extension);
    });
    return std::string(found == types.end() ? "text/plain" : found->second);
}

} // namespace platform
