// Pages from local files.
#pragma once

#include <string>

#include "browser/builtin/ReplyBody.h"

namespace platform {

// The file that a file URL names, drive paths mapped to the user's drive; false with the reason
// when it leads outside or is malformed.
bool FileNameOfUrl(const std::string& url, std::string& fileName, std::string& error);

// Reads the whole file; false with the reason.
bool ReadFilePage(const std::string& fileName, ReplyBody& body, std::string& error);

// By the ending of the name; text/plain for those not known.
std::string TypeOfFile(const std::string& fileName);

} // namespace platform
