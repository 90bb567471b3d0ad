// An X server of the test's own, without a screen that anybody sees.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>
#include <xcb/xcb.h>

#include "support/ScopedVariable.h"

namespace test_support {

enum class WindowManager { none, openbox };

struct XDisconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using XConnection = std::unique_ptr<xcb_connection_t, XDisconnect>;

// Xvfb on a display number that it finds free itself. While the object lives DISPLAY names it, and
// ZRHTTP_HEADLESS is not set. It ends with the object or, when this process ends without warning,
// by itself. Throws when server or window manager do not start.
class XServer {
public:
    explicit XServer(WindowManager windowManager = WindowManager::none);
    ~XServer();
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    // ":<number>".
    const std::string& Name() const { return m_name; }
    // Ends the server, and with it the window manager, before the destructor does.
    void End();
    // The pixels of the whole screen as the server has them.
    std::vector<std::uint8_t> Screenshot() const;

private:
    void StartServer();
    void StartWindowManager();
    const xcb_screen_t& Screen() const;
    void WaitForWindowManager() const;

    std::string m_home = "/tmp/zrhttp-x-XXXXXX";
    std::string m_name;
    pid_t m_server = -1;
    pid_t m_windowManager = -1;
    XConnection m_connection; // the server ends when nobody is connected any more
    std::optional<ScopedVariable> m_display;
    std::optional<ScopedVariable> m_headless;
};

} // namespace test_support
