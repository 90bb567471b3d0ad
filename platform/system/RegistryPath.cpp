#include "system/RegistryPath.h"

#include <algorithm>

#include <platform/CodePage.h>

namespace platform {

std::string_view RegistryRootName(HKEY root) {
    if (root == HKEY_CLASSES_ROOT) return "HKEY_CLASSES_ROOT";
    if (root == HKEY_CURRENT_USER) return "HKEY_CURRENT_USER";
    if (root == HKEY_LOCAL_MACHINE) return "HKEY_LOCAL_MACHINE";
    return {};
}

std::optional<std::vector<std::string>> SplitRegistryPath(const CString& strKey) {
    std::string_view rest = strKey.View();
    if (rest.find('\0') != std::string_view::npos) return std::nullopt;
    std::vector<std::string> names;
    while (!rest.empty()) {
        const std::string_view name = rest.substr(0, rest.find('\\'));
        if (!name.empty()) names.push_back(Utf8FromAnsi(name));
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    }
    return names;
}

bool EqualRegistryNames(std::string_view a, std::string_view b) {
    const auto fold = [](char ch) {
        return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
    };
    return std::ranges::equal(a, b, {}, fold, fold);
}

bool IsAtOrBelow(const std::vector<std::string>& path, const std::vector<std::string>& above) {
    return path.size() >= above.size() &&
           std::equal(above.begin(), above.end(), path.begin(), EqualRegistryNames);
}

} // namespace platform
