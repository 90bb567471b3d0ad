// The libraries that do the work, with the versions that run here.
#pragma once

#include <string>
#include <vector>

namespace zrhttp {

struct LibraryVersion {
    std::string name;
    std::string version;
};

std::vector<LibraryVersion> LibraryVersions();

} // namespace zrhttp
