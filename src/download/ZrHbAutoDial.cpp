#include <ZrHbAutoDial.h>

#include <vector>

#include "siblings/ZrCbRegistry.h"

namespace {

constexpr const char* kKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
constexpr const char* kName = "EnableAutodial";
constexpr int kOnlyRead = -1;
constexpr int kUnreadable = -1;
constexpr BYTE kOn = 1; // bit 0; the others have other meanings

// Empty when there is none.
std::vector<BYTE> ReadSetting() {
    std::vector<BYTE> value(2);
    DWORD size = 1;
    LONG result = 0;
    while ((result = CZrCbRegistry::GetRegistryKeyValueBinary(
                HKEY_CURRENT_USER, kKey, kName, value.data(), size, KEY_READ)) == ERROR_MORE_DATA)
        value.resize(size + 1);
    value.resize(result == ERROR_SUCCESS ? size : 0);
    return value;
}

} // namespace

int CZrHbAutoDial::Get_EnableAutodial() {
    return Set_EnableAutodial(kOnlyRead);
}

int CZrHbAutoDial::Set_EnableAutodial(int nState) {
    std::vector<BYTE> value = ReadSetting();
    if (value.empty()) return kUnreadable;
    const int before = value[0] & kOn;
    if (nState == kOnlyRead) return before;
    value[0] = static_cast<BYTE>(nState ? value[0] | kOn : value[0] & ~kOn);
    CZrCbRegistry::SetRegistryKeyValueBinary(HKEY_CURRENT_USER, kKey, kName, value.data(),
                                             static_cast<DWORD>(value.size()), KEY_WRITE);
    return before;
}
