// What `zrhttp form` was asked for, as the command line said it.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zrhttp {

struct FormEntry {
    enum class Kind { Field, Secret, File };
    Kind kind;
    std::string argument;
};

struct FormOptions {
    std::vector<FormEntry> entries; // in the order given
    std::string encoding;           // query, urlencoded or multipart
    std::optional<std::string> boundary;
    bool isMasked = false;
    bool withHeader = false;
    bool isUtf8 = false; // names and values are sent as they were given
    std::optional<std::string> output;
};

} // namespace zrhttp
