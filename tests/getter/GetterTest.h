// A home, a clock and back-ends of the test's own around the getter.
#pragma once

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <ZrHbUHttpGet.h>

#include "getter/ZrHbUHttpGet_Impl.h"
#include "support/ManualClock.h"
#include "support/ScriptedBackend.h"
#include "support/TemporaryHome.h"

namespace test_support {

// Lets a test take the state object away.
class GetterWithoutState : public CZrHbUHttpGet {
public:
    GetterWithoutState() : CZrHbUHttpGet(eAppGroup_2) { DeleteImpl(); }
};

class GetterTest : public testing::Test {
protected:
    TemporaryHome home;
    ManualClock clock;
    platform::ScopedService<platform::Clock> installedClock{clock};
    BackendScript script;
    ScriptedBackends backends{script};
    CString strErr;
    CString strUrl;

    // Connects with the in-process choice.
    DWORD Connect(CZrHbUHttpGet& getter, const CString& serverUrl = "", int inProcess = 0,
                  CZrHbUHttpGet::EZrHbInterfaceVariant variant = CZrHbUHttpGet::eVisible) {
        return getter.ConnectV3(nullptr, strErr, variant,
                                CZrHbUHttpGet::eConnectWith_InternetExplorer, 7, "trace", serverUrl,
                                0, inProcess);
    }

    // The texts of all log records so far.
    std::vector<std::string> LogTexts() const {
        std::istringstream log(home.ReadFile("log/zrhttpbase3.log").value_or(""));
        std::vector<std::string> texts;
        for (std::string line; std::getline(log, line);)
            texts.push_back(line.substr(line.rfind('\t') + 1));
        return texts;
    }

    DWORD MillisecondsFor(const auto& action) {
        const DWORD before = clock.TickCount();
        action();
        return clock.TickCount() - before;
    }
};

} // namespace test_support
