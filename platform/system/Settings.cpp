#include <platform/Settings.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>

#include <platform/IniFile.h>
#include <platform/UserPaths.h>

namespace platform {
namespace {

struct KnownSetting {
    const char* name;
    const char* fallback;
    bool mayBeInFile;
};

constexpr KnownSetting kKnownSettings[] = {
    {"ZRHTTP_BROWSER", "", true},
    {"ZRHTTP_CONTROL", "builtin", true},
    {"ZRHTTP_APPLICATION", "chromium", true},
    {"ZRHTTP_HEADLESS", "0", true},
    {"ZRHTTP_LEGACY_SYSTEM", "0", true},
    {"ZRHTTP_HOME", "", false}, // it decides where the file is
    {"ZRHTTP_CA_FILE", "", true},
    {"ZRHTTP_REPEATED_POST", "0", true},
};

// The entry of platform.ini; empty when there is none.
CString FromFile(const char* pszName) {
    const CString strFile = SettingsDirectory() + "/platform.ini";
    std::string buffer(256, '\0');
    for (;;) {
        const auto size = static_cast<DWORD>(buffer.size());
        const DWORD copied =
            GetPrivateProfileStringA("Platform", pszName, "", buffer.data(), size, strFile);
        if (copied + 1 < size) return CString(std::string_view(buffer).substr(0, copied));
        buffer.resize(buffer.size() * 2);
    }
}

Setting Resolve(const KnownSetting& known) {
    const char* const pszValue = std::getenv(known.name);
    if (pszValue && *pszValue) return {known.name, pszValue, "environment"};
    const CString strFromFile = known.mayBeInFile ? FromFile(known.name) : CString();
    if (!strFromFile.IsEmpty()) return {known.name, strFromFile, "platform.ini"};
    return {known.name, known.fallback, "default"};
}

} // namespace

Setting GetSetting(const char* pszName) {
    const auto* const known = std::find_if(
        std::begin(kKnownSettings), std::end(kKnownSettings),
        [=](const KnownSetting& row) { return std::string_view(row.name) == pszName; });
    return known == std::end(kKnownSettings) ? Setting{pszName, "", "default"} : Resolve(*known);
}

std::vector<Setting> AllSettings() {
    std::vector<Setting> all;
    std::transform(std::begin(kKnownSettings), std::end(kKnownSettings), std::back_inserter(all),
                   Resolve);
    return all;
}

} // namespace platform
