// The browser application on a display: hidden at first, shown and hidden, found by its title.
#include <algorithm>

#include <gtest/gtest.h>

#include <platform/Browser.h>
#include <platform/Window.h>

#include "support/PumpUntil.h"
#include "support/TestServer.h"
#include "support/XServer.h"

namespace platform_test {
namespace {

using namespace test_support;

class Application : public testing::TestWithParam<WindowManager> {
protected:
    Application() : m_screen(GetParam()) {
        m_server.Set("/page", Html("<title>Kontoauszug</title><body bgcolor=red>page"));
        m_server.Set("/alert", Html("<body onload=\"alert('Achtung')\">text"));
        m_empty = m_screen.Screenshot();
        OleInitialize(nullptr);
        CoCreateInstance(CLSID_InternetExplorer, nullptr, CLSCTX_LOCAL_SERVER, IID_IWebBrowser2,
                         reinterpret_cast<void**>(&m_browser));
    }
    ~Application() override {
        if (m_browser) m_browser->Quit();
    }

    void Open(const std::string& path) {
        COleVariant url{CString(m_server.Url(path))};
        ASSERT_EQ(S_OK, m_browser->Navigate2(&url, nullptr, nullptr, nullptr, nullptr));
    }
    READYSTATE State() {
        READYSTATE state = -1;
        m_browser->get_ReadyState(&state);
        return state;
    }
    HWND Window() {
        LONG_PTR window = 0;
        m_browser->get_HWND(&window);
        return reinterpret_cast<HWND>(window);
    }
    // Whether a window covers a good part of the screen; a few pixels may change for other reasons.
    bool IsOnScreen() {
        const auto now = m_screen.Screenshot();
        std::size_t changed = 0;
        for (std::size_t index = 0; index < std::min(now.size(), m_empty.size()); ++index)
            if (now[index] != m_empty[index]) ++changed;
        return changed > m_empty.size() / 10;
    }

    XServer m_screen;
    TestServer m_server;
    std::vector<std::uint8_t> m_empty;
    CComPtr<IWebBrowser2> m_browser;
};

TEST_P(Application, StartsHiddenIsShownFoundAndHidden) {
    ASSERT_TRUE(m_browser);
    EXPECT_TRUE(IsWindow(Window()));
    EXPECT_FALSE(IsWindowVisible(Window()));
    Open("/page");
    ASSERT_TRUE(PumpUntil([&] { return State() == READYSTATE_COMPLETE; }, "the page"));
    EXPECT_FALSE(IsOnScreen());
    ASSERT_EQ(S_OK, m_browser->put_Visible(VARIANT_TRUE));
    EXPECT_TRUE(IsWindowVisible(Window()));
    ASSERT_TRUE(PumpUntil([&] { return IsOnScreen(); }, "the window on the screen"));

    const auto title = [&] { return AfxGetWindowText(Window()); };
    ASSERT_TRUE(PumpUntil([&] { return title().Find("Kontoauszug") == 0; }, "the title"));
    EXPECT_EQ(Window(), FindWindowA(nullptr, title()));
    EXPECT_TRUE(SetForegroundWindow(Window()));
    PumpUntil([&] { return GetForegroundWindow() == Window(); }, "the window in front");

    ASSERT_EQ(S_OK, m_browser->put_Visible(VARIANT_FALSE));
    EXPECT_FALSE(IsWindowVisible(Window()));
    PumpUntil([&] { return !IsOnScreen(); }, "the empty screen");
}

TEST_P(Application, ADialogThatIsSeenDisablesTheWindow) {
    ASSERT_TRUE(m_browser);
    ASSERT_EQ(S_OK, m_browser->put_Visible(VARIANT_TRUE));
    Open("/alert");
    ASSERT_TRUE(PumpUntil([&] { return !IsWindowEnabled(Window()); }, "the dialog"));
    EXPECT_LT(State(), READYSTATE_COMPLETE);
    Open("/page"); // closes it
    ASSERT_TRUE(PumpUntil([&] { return State() == READYSTATE_COMPLETE; }, "the next page"));
    EXPECT_TRUE(IsWindowEnabled(Window()));
}

INSTANTIATE_TEST_SUITE_P(WindowManagers, Application,
                         testing::Values(WindowManager::none, WindowManager::openbox),
                         [](const auto& one) {
                             return one.param == WindowManager::none ? "None" : "Openbox";
                         });

} // namespace
} // namespace platform_test
