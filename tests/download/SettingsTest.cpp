// The reasons of failures and the automatic dial-up setting.
#include <ZrHbAutoDial.h>
#include <ZrHbInet.h>
#include <gmock/gmock.h>
#include <platform/CodePage.h>
#include <platform/Registry.h>

#include "siblings/ZrCbRegistry.h"
#include "support/TemporaryHome.h"

using test_support::TemporaryHome;
using testing::HasSubstr;

namespace {

constexpr const char* kKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";

void Store(const std::vector<BYTE>& bytes) {
    CZrCbRegistry::SetRegistryKeyValueBinary(HKEY_CURRENT_USER, kKey, "EnableAutodial",
                                             bytes.data(), static_cast<DWORD>(bytes.size()),
                                             KEY_WRITE);
}

std::vector<BYTE> Stored() {
    std::vector<BYTE> bytes(100);
    DWORD size = 100;
    const LONG result = CZrCbRegistry::GetRegistryKeyValueBinary(
        HKEY_CURRENT_USER, kKey, "EnableAutodial", bytes.data(), size, KEY_READ);
    bytes.resize(result == ERROR_SUCCESS ? size : 0);
    return bytes;
}

std::string Reasons(int kind) {
    return platform::Utf8FromAnsi(
        CZrHbInet::GetReasonForCommunicationError(
            eAppGroup_2, static_cast<CZrHbInet::EZrHbErrorServerResponse>(kind))
            .View());
}

} // namespace

TEST(ErrorReasons, AreListedByKind) {
    const TemporaryHome home;
    const std::string others =
        "\n- Firewall oder Security-Programme falsch konfiguriert"
        "\n- Ungenügende Einstellungen des Internet-Explorer's"
        "\n- Automatische Cookiebehandlung ausgeschaltet"
        "\n- Installierte Toolbars (Yahoo!, Bluewin, Google, MSN, Ezilon usw.)"
        "\n- Installierte Popupblocker (Internet Explorer, CleanMyPC, Companion usw.)";
    EXPECT_EQ(Reasons(1), "Mögliche Ursachen:\n- Keine Verbindung ins Internet" + others);
    EXPECT_EQ(Reasons(2), "Mögliche Ursachen:" + others);
    EXPECT_EQ(Reasons(0), "");
    EXPECT_EQ(Reasons(3), "");
    const std::string log = home.ReadFile("log/zrhttpbase3.log").value_or("");
    EXPECT_THAT(log, HasSubstr("GetReasonForCommunicationError(2, 3): invalid "
                               "eErrorServerResponse"));
    EXPECT_THAT(log, HasSubstr("GetReasonForCommunicationError(2, 3): returns\\n\"\""));
    EXPECT_THAT(log, HasSubstr("GetReasonForCommunicationError(2, 2): returns\\n\"Mögliche"));
}

TEST(AutoDial, ChangesOneBitOnly) {
    const TemporaryHome home;
    EXPECT_EQ(CZrHbAutoDial::Get_EnableAutodial(), -1);
    EXPECT_EQ(CZrHbAutoDial::Set_EnableAutodial(1), -1);
    EXPECT_EQ(Stored(), std::vector<BYTE>());
    const struct {
        std::vector<BYTE> before;
        int state;
        int result;
        std::vector<BYTE> after;
    } cases[] = {
        {{1, 0, 0, 0}, 0, 1, {0, 0, 0, 0}}, {{3}, 0, 1, {2}},
        {{0, 0, 0, 0}, 5, 0, {1, 0, 0, 0}}, {{0xFE, 7}, 1, 0, {0xFF, 7}},
        {{1, 2, 3}, -1, 1, {1, 2, 3}},
    };
    for (const auto& one : cases) {
        Store(one.before);
        EXPECT_EQ(CZrHbAutoDial::Set_EnableAutodial(one.state), one.result);
        EXPECT_EQ(Stored(), one.after);
        EXPECT_EQ(CZrHbAutoDial::Get_EnableAutodial(), one.after[0] & 1);
    }
}
