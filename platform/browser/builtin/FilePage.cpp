#include "browser/builtin/FilePage.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

#include "browser/builtin/Limits.h"
#include "browser/common/FileUrl.h"
#include "browser/common/HeaderBlock.h"

namespace platform {

bool ReadFilePage(const std::string& fileName, ReplyBody& body, std::string& error) {
    error = ReasonNotAFile(fileName);
    if (!error.empty()) return false;
    std::ifstream file(fileName, std::ios::binary);
    std::vector<char> piece(64 * 1024);
    std::size_t bytes = 0;
    while (file) {
        file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        bytes += static_cast<std::size_t>(file.gcount());
        if (!body.Append({piece.data(), static_cast<std::size_t>(file.gcount())})) {
            error = TooLargeText(bytes);
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
