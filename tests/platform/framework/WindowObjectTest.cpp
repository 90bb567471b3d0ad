// Framework window objects: which object stands for a window, hosting a control, calling it.

#include <thread>

#include <gtest/gtest.h>

#include <platform/Browser.h>
#include <platform/CWnd.h>

#include "support/FailingAutomation.h"
#include "support/ScriptedBrowser.h"
#include "support/TestWindow.h"
#include "support/ThrownBy.h"

using namespace test_support;

namespace {

// Makes windows, or refuses to, and remembers them.
class CountedWindows final : public platform::WindowFactory {
public:
    bool isRefusing = false;
    std::vector<HWND> made;
    HWND Create(const platform::WindowRequest& request) override {
        made.push_back(isRefusing ? nullptr : platform::WindowFactory::Real().Create(request));
        return made.back();
    }
};

class WindowObject : public testing::Test {
protected:
    ScriptedControl control;
    CountedWindows windows;
    platform::ScopedService<platform::WindowFactory> installed{windows};
    const TestWindow top{"top"};

    BOOL Create(CWnd& window) {
        return window.CreateControl(CLSID_WebBrowser, "name", WS_VISIBLE, {-5, -4, 0, 1},
                                    CWnd::FromHandle(top), 7);
    }
    // References that others hold on the control.
    ULONG References() {
        control->AddRef();
        return control->Release();
    }
};

} // namespace

TEST_F(WindowObject, StandsForOneWindowAsLongAsThatExists) {
    CWnd* const object = CWnd::FromHandle(top);
    ASSERT_TRUE(object);
    EXPECT_EQ(object->GetSafeHwnd(), top);
    EXPECT_EQ(CWnd::FromHandle(top), object);
    EXPECT_TRUE(object->SetForegroundWindow());
    EXPECT_EQ(CWnd::GetForegroundWindow(), object);
    EXPECT_EQ(CWnd::FromHandle(GetDesktopWindow())->GetSafeHwnd(), GetDesktopWindow());
    DestroyWindow(top);
    EXPECT_EQ(CWnd::FromHandle(top), nullptr);
}

TEST_F(WindowObject, HostsAControlInAChildWindowUntilItIsDestroyed) {
    const ULONG before = References();
    CWnd window;
    ASSERT_TRUE(Create(window));
    const HWND handle = window.GetSafeHwnd();
    EXPECT_EQ(window.GetParent(), CWnd::FromHandle(top));
    EXPECT_EQ(CWnd::FromHandle(handle), &window);
    std::thread([&] { EXPECT_NE(CWnd::FromHandle(handle), &window); }).join();
    EXPECT_FALSE(Create(window)) << "has a control already";

    EXPECT_TRUE(window.DestroyWindow());
    EXPECT_FALSE(IsWindow(handle));
    EXPECT_EQ(References(), before);
    EXPECT_FALSE(window.DestroyWindow());
    EXPECT_EQ(ThrownBy([&] { window.InvokeHelper(106, 1, VT_EMPTY, nullptr, nullptr); }),
              "80010108");
    {
        CWnd shortLived;
        EXPECT_TRUE(Create(shortLived));
        DestroyWindow(top); // takes the child with it
        EXPECT_EQ(CWnd::FromHandle(shortLived.GetSafeHwnd()), nullptr);
    }
    EXPECT_EQ(References(), before);
}

TEST_F(WindowObject, WhatCannotBeHostedLeavesNothingBehind) {
    const ULONG before = References();
    const auto expectNothing = [&](BOOL result) {
        EXPECT_FALSE(result);
        EXPECT_EQ(References(), before);
        EXPECT_FALSE(IsWindow(windows.made.back())) << windows.made.size();
    };
    CWnd window;
    using Call = FailingAutomation::Call;
    for (const Call call : {Call::createInstance, Call::attachControl}) {
        windows.made.push_back(nullptr);
        FailingAutomation automation(call);
        expectNothing(Create(window));
    }
    windows.isRefusing = true;
    expectNothing(Create(window));
    windows.isRefusing = false;
    windows.made.push_back(nullptr);
    const RECT rect;
    expectNothing(window.CreateControl(CLSID_WebBrowser, "", 0, rect, nullptr, 0));
    expectNothing(
        window.CreateControl(CLSID_WebBrowser, "", 0, rect, CWnd::FromHandle(top), 0, nullptr, 1));
    EXPECT_EQ(window.GetSafeHwnd(), nullptr);
}

TEST_F(WindowObject, ACallThrowsWhatTheControlReports) {
    CWnd window;
    ASSERT_TRUE(Create(window));
    long state = -1;
    const auto readState = [&](VARTYPE type) {
        return ThrownBy([&] {
            window.InvokeHelper(DISPID_READYSTATE, DISPATCH_PROPERTYGET, type, &state, nullptr);
        });
    };
    control->moments = {{3, false}};
    EXPECT_EQ(readState(VT_I4), "nothing");
    EXPECT_EQ(state, 3);
    EXPECT_EQ(readState(VT_BOOL), "80020005") << "a result of another type";
    control->failing = {"get_ReadyState"};
    EXPECT_EQ(readState(VT_I4), "80004005");
    control->failureText = "has had enough";
    EXPECT_EQ(readState(VT_I4), "has had enough");
}
