// Programs in the browser's place.
#pragma once

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include <sys/stat.h>

#include "support/PumpUntil.h"
#include "support/ScopedVariable.h"
#include "support/TemporaryHome.h"

namespace platform_test {

// An executable script that is taken for the browser.
class StandIn {
public:
    explicit StandIn(const std::string& script) {
        m_home.WriteFile("browser", script);
        chmod(m_home.Path("browser").c_str(), 0755);
    }
    std::string Path() const { return m_home.Path("browser"); }

private:
    test_support::TemporaryHome m_home;
    test_support::ScopedVariable m_setting{"ZRHTTP_BROWSER", m_home.Path("browser").c_str()};
};

// A stand-in that notes which browser it is in the place of before it does what it is told.
class NotingStandIn {
public:
    explicit NotingStandIn(const std::string& script)
        : m_browser("#!/bin/sh\necho \"$HOME\" >\"$0.profile\"\necho $$ >\"$0.pid\"\n" + script) {}

    // What it has noted under that name. Waits for it.
    std::string Note(const char* pszName) const {
        std::string line;
        test_support::PumpUntil(
            [&] {
                std::ifstream file(m_browser.Path() + "." + pszName);
                return std::getline(file, line) && !file.eof();
            },
            pszName);
        return line;
    }
    bool IsGoneWithin(std::chrono::seconds patience) const {
        const std::string profile = Note("profile");
        const pid_t process = std::stoi(Note("pid"));
        const auto isLeft = [&] {
            return std::filesystem::exists(profile) || kill(process, 0) == 0;
        };
        const auto end = std::chrono::steady_clock::now() + patience;
        while (isLeft() && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return !isLeft();
    }

private:
    StandIn m_browser;
};

} // namespace platform_test
