// Framework window objects: which object stands for a window, hosting a control in one.

#include <thread>

#include <gtest/gtest.h>

#include <platform/Browser.h>
#include <platform/CWnd.h>

#include "support/ScriptedBrowser.h"
#include "support/TestWindow.h"
#include "support/ThrownBy.h"

using namespace test_support;

TEST(WindowObject, StandsForOneWindowAsLongAsThatExists) {
    const TestWindow top("top");
    CWnd* const object = CWnd::FromHandle(top);
    ASSERT_TRUE(object);
    EXPECT_EQ(object->GetSafeHwnd(), top);
    EXPECT_EQ(CWnd::FromHandle(top), object);
    EXPECT_TRUE(object->SetForegroundWindow());
    EXPECT_EQ(CWnd::GetForegroundWindow(), object);
    DestroyWindow(top);
    EXPECT_EQ(CWnd::FromHandle(top), nullptr);
}

TEST(WindowObject, HostsAControlInAChildWindowUntilItIsDestroyed) {
    const TestWindow top("top");
    const ScriptedControl control;
    const auto references = [&] { // that others hold on the control
        control->AddRef();
        return control->Release();
    };
    const auto create = [&](CWnd& window) {
        return window.CreateControl(CLSID_WebBrowser, "name", WS_VISIBLE, {-5, -4, 0, 1},
                                    CWnd::FromHandle(top), 7);
    };
    const ULONG before = references();
    CWnd window;
    ASSERT_TRUE(create(window));
    const HWND handle = window.GetSafeHwnd();
    EXPECT_EQ(window.GetParent(), CWnd::FromHandle(top));
    EXPECT_EQ(CWnd::FromHandle(handle), &window);
    std::thread([&] { EXPECT_NE(CWnd::FromHandle(handle), &window); }).join();
    EXPECT_FALSE(create(window)) << "has a control already";
    long state = -1;
    const auto readState = [&](VARTYPE type) {
        return ThrownBy([&] {
            window.InvokeHelper(DISPID_READYSTATE, DISPATCH_PROPERTYGET, type, &state, nullptr);
        });
    };
    EXPECT_EQ(readState(VT_I4), "nothing");
    EXPECT_EQ(readState(VT_BOOL), "80020005") << "a result of another type";

    EXPECT_TRUE(window.DestroyWindow());
    EXPECT_FALSE(IsWindow(handle));
    EXPECT_EQ(references(), before);
    EXPECT_FALSE(window.DestroyWindow());
    EXPECT_EQ(readState(VT_I4), "80010108");
    {
        CWnd shortLived;
        EXPECT_TRUE(create(shortLived));
        DestroyWindow(top); // takes the child with it
        EXPECT_EQ(CWnd::FromHandle(shortLived.GetSafeHwnd()), nullptr);
    }
    EXPECT_EQ(references(), before);
}
