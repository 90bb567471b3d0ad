// Pages from local files.
#pragma once

#include <string>

#include "browser/common/ReplyBody.h"

namespace platform {

// Reads the whole file; false with the reason.
bool ReadFilePage(const std::string& fileName, ReplyBody& body, std::string& error);

// By the ending of the name; text/plain for those not known.
std::string TypeOfFile(const std::string& fileName);

} // namespace platform
