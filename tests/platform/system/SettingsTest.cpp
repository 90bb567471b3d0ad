#include <platform/Settings.h>

#include <string>

#include <gtest/gtest.h>

#include "support/ScopedVariable.h"
#include "support/TemporaryHome.h"

namespace {

using test_support::ScopedVariable;
using test_support::TemporaryHome;

constexpr const char* kName = "ZRHTTP_APPLICATION";

std::string Shown() {
    const platform::Setting setting = platform::GetSetting(kName);
    return std::string(setting.value) + " from " + setting.source.GetString();
}

TEST(Settings, EnvironmentComesBeforeFileBeforeDefault) {
    const TemporaryHome home;
    const ScopedVariable restored(kName, nullptr);
    EXPECT_EQ(Shown(), "chromium from default");
    home.WriteFile("settings/platform.ini", "[Platform]\nzrhttp_application = builtin\n");
    EXPECT_EQ(Shown(), "builtin from platform.ini");
    const ScopedVariable empty(kName, "");
    EXPECT_EQ(Shown(), "builtin from platform.ini");
    const ScopedVariable set(kName, "other");
    EXPECT_EQ(Shown(), "other from environment");
}

TEST(Settings, LongValuesAreWholeAndTheRootCannotMoveItself) {
    const TemporaryHome home;
    const ScopedVariable restored(kName, nullptr);
    const std::string path(5000, 'p');
    home.WriteFile("settings/platform.ini",
                   "[Platform]\nZRHTTP_HOME=/elsewhere\nZRHTTP_APPLICATION=" + path + "\n");
    EXPECT_EQ(Shown(), path + " from platform.ini");
    const ScopedVariable noRoot("ZRHTTP_HOME", nullptr);
    const ScopedVariable base("XDG_CONFIG_HOME", home.Path("config").c_str());
    home.WriteFile("config/zrhttpbase3/settings/platform.ini", "[Platform]\nZRHTTP_HOME=/away\n");
    EXPECT_EQ(platform::GetSetting("ZRHTTP_HOME").source, "default");
}

} // namespace
