// A back-end whose read results the test sets, and that records what the getter asked of it.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include <platform/Services.h>

#include "backends/ZrHbHttpGet.h"
#include "getter/BackendFactory.h"

namespace test_support {

// What the test sets and sees of the back-ends that the getter makes; outlives them.
struct BackendScript {
    struct ReadResult {
        DWORD code = 0;
        std::string page = {};
        DWORD length = 0;
        std::string url = "http://host/read";
        std::string error = {};
    };
    struct Opened {
        std::string url;
        bool hasPostData = false;
        DWORD postLength = 0;
        std::string headers;
        BOOL keepPageOpen = FALSE;
    };
    DWORD connectResult = 0;
    DWORD openResult = 0;
    std::deque<ReadResult> reads; // one a read; the last stays
    IWebBrowser2* browser = nullptr;
    std::function<void()> onConnect = [] {};
    std::function<void()> onRead = [] {};

    std::vector<BackendKind> kinds;
    std::vector<DWORD> versions;
    std::vector<Opened> opened;
    std::vector<std::string> calls; // "Connect", "Open", "Close", "Disconnect", "~", ...
    bool isFactoryEmpty = false;
};

// While it lives, connects make scripted back-ends.
class ScriptedBackends final : public BackendFactory {
public:
    explicit ScriptedBackends(BackendScript& script) : m_script(script), m_installed(*this) {}
    std::unique_ptr<CZrHbHttpGet> Create(BackendKind kind, DWORD nConnectVersion) override;

private:
    BackendScript& m_script;
    platform::ScopedService<BackendFactory> m_installed;
};

} // namespace test_support
