// The value of a header field that is a list (RFC 9110, 5.6.1).
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

namespace platform {

// Its members, without the blanks around them; a member may be empty. They are parts of `list`.
inline std::vector<std::string_view> ListMembers(std::string_view list) {
    constexpr std::string_view blanks = " \t";
    std::vector<std::string_view> members;
    for (bool isLast = false; !isLast;) {
        const std::size_t comma = std::min(list.find(','), list.size());
        isLast = comma == list.size();
        std::string_view member = list.substr(0, comma);
        member.remove_prefix(std::min(member.find_first_not_of(blanks), member.size()));
        members.push_back(member.substr(0, member.find_last_not_of(blanks) + 1));
        list.remove_prefix(std::min(comma + 1, list.size()));
    }
    return members;
}

} // namespace platform
