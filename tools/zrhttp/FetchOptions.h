// What `zrhttp fetch` was asked for, as the command line said it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zrhttp {

struct FetchOptions {
    std::string url;
    std::string via = "control";
    std::string engine; // empty: as the settings say
    std::optional<std::string> post;
    std::optional<std::string> postFile;
    std::vector<std::string> headers;
    std::uint32_t timeout = 60000;     // milliseconds without growth; 0: none
    std::uint32_t idleTimeout = 15000; // milliseconds loaded and idle; 0: none
    bool largeData = false;
    bool collect = false;
    bool fail = false; // for an error page
    std::optional<std::string> contentType;
    std::optional<std::string> output;
    std::optional<std::string> save;
    bool text = false;
    bool json = false;
    bool visible = false;
    std::vector<std::string> titles;
};

} // namespace zrhttp
