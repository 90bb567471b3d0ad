// An X server of the test's own, without a screen that anybody sees.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "support/ScopedVariable.h"

namespace test_support {

enum class WindowManager { none, openbox };

// Xvfb on a display number that it finds free itself. While the object lives DISPLAY names it, and
// ZRHTTP_HEADLESS is not set. Throws when server or window manager do not start.
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

    std::string m_home = "/tmp/zrhttp-x-XXXXXX";
    std::string m_name;
    pid_t m_server = -1;
    pid_t m_windowManager = -1;
    std::optional<ScopedVariable> m_display;
    std::optional<ScopedVariable> m_headless;
};

} // namespace test_support
