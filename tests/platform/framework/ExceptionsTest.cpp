#include <platform/Exceptions.h>

#include <functional>
#include <string>

#include <gtest/gtest.h>

namespace {

// The message of what the operation throws, in a buffer of `size` bytes; "none" when it has none.
template <class TException>
std::string MessageOf(const std::function<void()>& operation, UINT size = 2000) {
    try {
        operation();
    } catch (TException* exception) {
        std::string buffer(size, '#');
        const BOOL has = exception->GetErrorMessage(buffer.data(), size);
        EXPECT_EQ(has == FALSE, buffer.front() == '\0');
        exception->Delete();
        return has ? std::string(buffer.c_str()) : "none";
    }
    return "nothing thrown";
}

TEST(Exceptions, TellWhatHappened) {
    const auto notRegistered = [] { AfxThrowOleException(REGDB_E_CLASSNOTREG); };
    EXPECT_EQ(MessageOf<COleException>(notRegistered), "Class not registered.");
    EXPECT_EQ(MessageOf<COleException>(notRegistered, 6), "Class") << "cut to the buffer";
    EXPECT_EQ(MessageOf<CException>(notRegistered), "Class not registered.");
    EXPECT_EQ(MessageOf<COleException>([] { AfxThrowOleException(E_INVALIDARG); }),
              "The parameter is incorrect.")
        << "a status code that wraps a system error number";
    EXPECT_EQ(MessageOf<COleException>([] { AfxThrowOleException(HRESULT{-7}); }), "none");
    EXPECT_EQ(MessageOf<CFileException>([] { AfxThrowFileException(ERROR_DISK_FULL, "a.txt"); }),
              "a.txt: There is not enough space on the disk.");
}

} // namespace
