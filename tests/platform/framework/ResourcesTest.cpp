#include <platform/Resources.h>

#include <thread>

#include <gtest/gtest.h>

namespace {

constexpr StringResource kFirst[] = {{1, "one"}, {2, "zw\xC3\xB6lf"}};
constexpr StringResource kSecond[] = {{1, "uno"}, {2, ""}};

AFX_EXTENSION_MODULE Module(std::span<const StringResource> strings) {
    AFX_EXTENSION_MODULE module{"test.dll", strings};
    EXPECT_TRUE(AfxInitExtensionModule(module));
    return module;
}

CString Load(UINT id) {
    CString text = "before";
    const bool isLoaded = text.LoadString(id) != FALSE;
    EXPECT_EQ(isLoaded, !text.IsEmpty());
    return text;
}

TEST(Resources, AreFoundInTheNewestModuleThatHasThem) {
    const AFX_EXTENSION_MODULE first = Module(kFirst);
    const AFX_EXTENSION_MODULE second = Module(kSecond);
    EXPECT_EQ(Load(1), "");
    const CDynLinkLibrary firstLoaded(first);
    EXPECT_EQ(Load(1), "one");
    {
        const CDynLinkLibrary secondLoaded(second);
        EXPECT_EQ(Load(1), "uno");
        EXPECT_EQ(Load(2), "zw\xF6lf") << "an empty text does not hide another module's";
        const CDynLinkLibrary firstAgain(first);
        EXPECT_EQ(Load(1), "one");
    }
    EXPECT_EQ(Load(1), "one");
    EXPECT_EQ(Load(3), "");
}

TEST(Resources, MayBeLoadedWhileModulesComeAndGo) {
    const AFX_EXTENSION_MODULE first = Module(kFirst);
    const AFX_EXTENSION_MODULE second = Module(kSecond);
    const CDynLinkLibrary firstLoaded(first);
    std::thread other([&] {
        for (int round = 0; round < 1000; ++round)
            const CDynLinkLibrary secondLoaded(second);
    });
    for (int round = 0; round < 1000; ++round)
        EXPECT_EQ(Load(2), "zw\xF6lf");
    other.join();
}

TEST(ModuleState, NamesTheProgram) {
    const std::string program = testing::internal::GetArgvs().front();
    EXPECT_EQ(AfxGetModuleState()->m_strCurrentAppName.View(),
              program.substr(program.rfind('/') + 1));
}

} // namespace
