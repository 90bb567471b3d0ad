// The getter's back-ends, each over each real browser it can have.
#pragma once

#include <string>

#include <gtest/gtest.h>

#include <ZrHbUHttpGet.h>
#include <platform/Window.h>

#include "support/ScopedVariable.h"

namespace test_support {

struct BrowserKind {
    const char* name;
    const char* engine;
    CZrHbUHttpGet::EZrHbInterfaceVariant variant;
    const char* legacySystem; // on such a one, the browser is an application
};

// A test that runs over all of them.
class OverBrowserKinds : public testing::TestWithParam<BrowserKind> {
public:
    static auto All() {
        using Kind = BrowserKind;
        return testing::Values(
            Kind{"InProcess_builtin", "builtin", CZrHbUHttpGet::eVisible, "0"},
            Kind{"ControlHosting_builtin", "builtin", CZrHbUHttpGet::eInvisible, "0"},
            Kind{"OutOfProcess_builtin", "builtin", CZrHbUHttpGet::eVisible, "1"},
            Kind{"InProcess_chromium", "chromium", CZrHbUHttpGet::eVisible, "0"},
            Kind{"OutOfProcess_chromium", "chromium", CZrHbUHttpGet::eVisible, "1"});
    }
    static std::string NameOf(const testing::TestParamInfo<BrowserKind>& kind) {
        return kind.param.name;
    }

protected:
    // Any thread.
    static void Connect(CZrHbUHttpGet& getter) {
        CString error;
        ASSERT_EQ(getter.ConnectV3(GetDesktopWindow(), error, GetParam().variant,
                                   CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, "", "", 0, 0),
                  ZRHB_OK)
            << error.GetString();
        getter.SetSecurityTimeout(0);
    }

private:
    const ScopedVariable m_control{"ZRHTTP_CONTROL", GetParam().engine};
    const ScopedVariable m_application{"ZRHTTP_APPLICATION", GetParam().engine};
    const ScopedVariable m_headless{"ZRHTTP_HEADLESS", "1"};
    const ScopedVariable m_system{"ZRHTTP_LEGACY_SYSTEM", GetParam().legacySystem};
};

} // namespace test_support
