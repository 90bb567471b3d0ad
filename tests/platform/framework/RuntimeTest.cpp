// Exceptions and string resources.
#include <functional>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <platform/Exceptions.h>
#include <platform/Resources.h>

namespace {

// The message of what the operation throws, in a buffer of `size` bytes; "none" when it has none.
std::string MessageOf(const std::function<void()>& operation, UINT size = 100) {
    std::string buffer(size, '#');
    try {
        operation();
    } catch (CException* exception) {
        const BOOL has = exception->GetErrorMessage(buffer.data(), size);
        exception->Delete();
        return has ? buffer.c_str() : "none";
    }
    return "nothing thrown";
}

TEST(Exceptions, TellWhatHappened) {
    const auto notRegistered = [] { AfxThrowOleException(REGDB_E_CLASSNOTREG); };
    EXPECT_EQ(MessageOf(notRegistered), "Class not registered.");
    EXPECT_EQ(MessageOf(notRegistered, 6), "Class") << "cut to the buffer";
    EXPECT_EQ(MessageOf([] { AfxThrowOleException(HRESULT{-7}); }), "none");
    EXPECT_EQ(MessageOf([] { AfxThrowFileException(ERROR_DISK_FULL, "a.txt"); }),
              "a.txt: There is not enough space on the disk.");
}

constexpr StringResource kFirst[] = {{1001, "one"}, {1002, "zw\xC3\xB6lf"}};
constexpr StringResource kSecond[] = {{1001, "uno"}, {1002, ""}};

CString Loaded(UINT id) {
    CString text = "before";
    const bool isLoaded = text.LoadString(id) != FALSE;
    EXPECT_EQ(isLoaded, !text.IsEmpty());
    return text;
}

TEST(Resources, AreFoundInTheNewestModuleThatHasThem) {
    AFX_EXTENSION_MODULE first{"first.dll", kFirst};
    AFX_EXTENSION_MODULE second{"second.dll", kSecond};
    EXPECT_EQ(Loaded(1001), "");
    const CDynLinkLibrary firstLoaded(first);
    {
        const CDynLinkLibrary secondLoaded(second);
        EXPECT_EQ(Loaded(1001), "uno");
        EXPECT_EQ(Loaded(1002), "zw\xF6lf") << "an empty text does not hide another module's";
    }
    EXPECT_EQ(Loaded(1001), "one");

    // Texts may be loaded while modules come and go.
    std::thread other([&] {
        for (int round = 0; round < 1000; ++round)
            const CDynLinkLibrary secondLoaded(second);
    });
    for (int round = 0; round < 1000; ++round)
        EXPECT_EQ(Loaded(1002), "zw\xF6lf");
    other.join();
}

} // namespace
