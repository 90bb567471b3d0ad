// Whether there is a connection, and what counts as a URL.
#include <gtest/gtest.h>

#include <platform/Registry.h>

#include "platform/internet/InternetClient.h"
#include "support/TemporaryHome.h"
#include "support/TestServer.h"

namespace platform_test {
namespace {

using namespace test_support;

constexpr const char* kKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";

DWORD StateFlags() {
    DWORD flags = 0;
    const BOOL isConnected = InternetGetConnectedState(&flags, 0);
    EXPECT_EQ(isConnected != FALSE, (flags & INTERNET_CONNECTION_LAN) != 0);
    return flags;
}

TEST(State, TheUsersOfflineStateIsLeftByGoingOnline) {
    const TemporaryHome home;
    auto& registry = platform::RegistryStore::Real();
    const DWORD connected = StateFlags();
    EXPECT_EQ(0u, connected & INTERNET_CONNECTION_OFFLINE);
    ASSERT_EQ(ERROR_SUCCESS, registry.SetValue(HKEY_CURRENT_USER, kKey, "GlobalUserOffline",
                                               {REG_DWORD, std::string("\1\0\0\0", 4)}));
    EXPECT_EQ(connected | INTERNET_CONNECTION_OFFLINE, StateFlags());

    TestServer server; // this computer is always there
    EXPECT_EQ(404, StatusOf(OpenUrl(OpenSession(), server.Url("/"))));
    EXPECT_EQ(ERROR_INTERNET_DISCONNECTED, FailureOfUrl("http://no-such-host.invalid/").first);

    EXPECT_TRUE(InternetGoOnline(server.Url("/").c_str(), nullptr, 0));
    EXPECT_EQ(connected, StateFlags());
    EXPECT_EQ(connected != 0, InternetGoOnline("http://no-such-host.invalid/", nullptr, 0) != 0);
    EXPECT_EQ(ERROR_INTERNET_NAME_NOT_RESOLVED, FailureOfUrl("http://no-such-host.invalid/").first);
}

TEST(State, ValidUrls) {
    for (const char16_t* url :
         {u"http://h", u"HTTPS://www.example.test:8443/a/b;c?d=e&f=%C3%BC#g", u"http://u:p@h/",
          u"http://[::1]:80/", u"ftp://h/f", u"file:///c:/x.txt"})
        EXPECT_EQ(S_OK, IsValidURL(nullptr, url, 0)) << testing::PrintToString(std::u16string(url));
    for (const char16_t* url : {u"",
                                u"h",
                                u"/path",
                                u"www.example.test/",
                                u"http:",
                                u"http:/h",
                                u"http://",
                                u"http:///p",
                                u"http:h",
                                u"http://h/a b",
                                u"http://h/\n",
                                u"http://h/\u00FC",
                                u"http://h/%4",
                                u"http://h/%zz",
                                u"http://h/#a#b",
                                u"http://h:99999/",
                                u"http://h:x/",
                                u"http://[::1/",
                                u"http://[x]/",
                                u"http://h/[",
                                u"http://h/<a>",
                                u"mailto:a@b",
                                u"javascript:alert(1)",
                                u"file:x"})
        EXPECT_EQ(S_FALSE, IsValidURL(nullptr, url, 0))
            << testing::PrintToString(std::u16string(url));
    EXPECT_EQ(S_FALSE, IsValidURL(nullptr, nullptr, 0));
}

} // namespace
} // namespace platform_test
