// Browsers that come and go: what remains of them.
#include <cstring>
#include <filesystem>

#include <gmock/gmock.h>

#include <platform/UrlMoniker.h>

#include "browser/chromium/ChromiumApplication.h"
#include "contract/ChromiumPages.h"
#include "platform/chromium/StandIn.h"
#include "support/Leftovers.h"
#include "support/PumpUntil.h"

using namespace test_support;
using testing::IsEmpty;

namespace {

using Life = ChromiumPages;

long OpenDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
}

} // namespace

TEST_F(Life, FiftyConnectsLeaveNothingBehind) {
    Getter().Disconnect(0);
    const ProfileDirectories profiles;
    const auto areGone = [] { return RunningChromiums().empty(); };
    PumpUntil(areGone, "the end of the first browser");
    const long before = OpenDescriptors();
    for (int round = 0; round < 50; ++round) {
        ASSERT_EQ(Connect(), ZRHB_OK) << round << m_error.GetString();
        Getter().Disconnect(0);
    }
    PumpUntil(areGone, "the end of the browsers");
    PumpUntil([&] { return OpenDescriptors() <= before; }, "the closing of the descriptors");
    EXPECT_THAT(profiles.LeftBehind(), IsEmpty());
}

TEST_F(Life, OfABrowserThatNeverAnswersEndsWithThePatience) {
    const ProfileDirectories profiles;
    const platform_test::NotingStandIn browser("exec sleep 60\n");
    std::string error;
    const auto application = platform::ChromiumApplication::Start(
        platform::ChromiumApplication::Windows::none, error, std::chrono::milliseconds(200));
    EXPECT_EQ(application, nullptr);
    EXPECT_EQ(error, "Chromium does not answer");
    EXPECT_TRUE(browser.IsGoneWithin(std::chrono::seconds(5)));
    EXPECT_THAT(profiles.LeftBehind(), IsEmpty());
}

TEST_F(Life, OfABrowserThatIsOnlyAskedForItsName) {
    const ScopedVariable engine("ZRHTTP_CONTROL", "chromium");
    char name[256] = "";
    DWORD length = 0;
    EXPECT_EQ(UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, name, 4, &length, 0), E_OUTOFMEMORY);
    EXPECT_EQ(UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, name, sizeof name, &length, 0), S_OK);
    EXPECT_EQ(std::strlen(name), length);
    Server().Set("/user-agent", Html("page"));
    EXPECT_EQ(FetchPath("/user-agent"), "page");
    EXPECT_EQ(Server().Requests("/user-agent").at(0).Header("User-Agent"), name);
    PumpUntil([] { return RunningChromiums().size() == 1; }, "the end of the one that was asked");
}
