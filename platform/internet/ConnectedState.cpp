#include "internet/ConnectedState.h"

#include <algorithm>
#include <memory>

#include <ifaddrs.h>
#include <net/if.h>

#include <platform/Registry.h>

#include "internet/CurlUrl.h"

namespace platform {
namespace {

constexpr const char* kKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
constexpr const char* kOfflineValue = "GlobalUserOffline";

struct InterfaceListCleanup {
    void operator()(ifaddrs* list) const { freeifaddrs(list); }
};

bool IsUsable(const ifaddrs& interface) {
    constexpr unsigned up = IFF_UP | IFF_RUNNING;
    return (interface.ifa_flags & up) == up && (interface.ifa_flags & IFF_LOOPBACK) == 0;
}

} // namespace

bool IsNetworkUp() {
    ifaddrs* first = nullptr;
    if (getifaddrs(&first) != 0) return false;
    const std::unique_ptr<ifaddrs, InterfaceListCleanup> list(first);
    for (const ifaddrs* one = first; one; one = one->ifa_next)
        if (IsUsable(*one)) return true;
    return false;
}

bool IsUserOffline() {
    RegistryValue value;
    if (Current<RegistryStore>().GetValue(HKEY_CURRENT_USER, kKey, kOfflineValue, value) !=
        ERROR_SUCCESS)
        return false;
    return std::any_of(value.data.begin(), value.data.end(), [](char byte) { return byte != 0; });
}

bool EndUserOffline() {
    const RegistryValue online{REG_DWORD, std::string(sizeof(DWORD), '\0')};
    return Current<RegistryStore>().SetValue(HKEY_CURRENT_USER, kKey, kOfflineValue, online) ==
           ERROR_SUCCESS;
}

bool IsLoopbackUrl(const std::string& url) {
    const auto parsed = CurlUrl::Parse(url);
    if (!parsed) return false;
    const CString host(parsed->Host());
    return host.CompareNoCase("localhost") == 0 || host.View().starts_with("127.") ||
           host == "[::1]";
}

} // namespace platform
