// A Chromium process with a profile directory of its own, started and cleaned up after.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "browser/chromium/CertificateStore.h"
#include "browser/chromium/DevToolsConnection.h"

namespace platform {

// Where Chromium is: the setting ZRHTTP_BROWSER when there is one (whether the file exists or not),
// else the first of chromium, chromium-browser and google-chrome on PATH.
std::optional<std::string> FindChromium();

// The process ends with the object at the latest, and with this process however that ends; its
// profile directory goes with it. Several browser objects may share one (a page and its pop-ups).
class ChromiumProcess {
public:
    // Starts Chromium: headless or, on the X display `display`, with windows. Returns as soon as
    // it is running; whether it answers shows in the conversation. Null, with the reason in plain
    // words, when it cannot be started.
    static std::shared_ptr<ChromiumProcess> Launch(const std::optional<std::string>& display,
                                                   std::string& error);
    virtual ~ChromiumProcess() = default;

    virtual DevToolsConnection& Connection() = 0;
    // How the instance part of its windows' WM_CLASS ends; no other process uses the same.
    virtual std::string WindowInstance() const = 0;
    virtual const std::string& ProfileDirectory() const = 0;
    // What was wrong with the user's own certificates when it started.
    virtual const CertificateProblem& Certificates() const = 0;
    // Asks it to quit and returns; what does not end by itself is ended. Once.
    virtual void Quit() = 0;
};

} // namespace platform
