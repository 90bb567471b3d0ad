// URLs of local files.
#pragma once

#include <string>

namespace platform {

// The file that a file URL names, drive paths mapped to the user's drive; false with the reason
// when it leads outside or is malformed.
bool FileNameOfUrl(const std::string& url, std::string& fileName, std::string& error);

// The URL of an absolute path.
std::string UrlOfFileName(const std::string& fileName);

// Empty for a file that can be shown, else the reason: devices and pipes could block for ever.
std::string ReasonNotAFile(const std::string& fileName);

} // namespace platform
