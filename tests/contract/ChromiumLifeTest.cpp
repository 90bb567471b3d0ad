// Browsers that come and go: what remains of them.
#include <filesystem>

#include <gmock/gmock.h>

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
