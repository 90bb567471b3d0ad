// Registry keys by name: predefined roots and paths.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <platform/Registry.h>

namespace platform {

// "HKEY_CLASSES_ROOT" and so on; empty for anything but a predefined root.
std::string_view RegistryRootName(HKEY root);

// The names along a path, UTF-8, as spelled. Only the backslash separates ("text/plain" is one
// name); empty names are skipped. Nothing for a path with a NUL byte.
std::optional<std::vector<std::string>> SplitRegistryPath(const CString& strKey);

// Whether both name the same key: ASCII letters without regard to case.
bool EqualRegistryNames(std::string_view a, std::string_view b);
// Whether `path` is `above` or lies below it.
bool IsAtOrBelow(const std::vector<std::string>& path, const std::vector<std::string>& above);

} // namespace platform
