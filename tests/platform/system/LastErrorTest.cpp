#include <platform/LastError.h>

#include <cerrno>
#include <thread>

#include <gtest/gtest.h>

namespace {

using platform::ErrorFromErrno;
using platform::SystemErrorText;

TEST(LastError, BelongsToItsThread) {
    SetLastError(ERROR_BUSY);
    DWORD seenAtFirst = ERROR_BUSY;
    std::thread([&] {
        seenAtFirst = GetLastError();
        SetLastError(ERROR_DISK_FULL);
    }).join();
    EXPECT_EQ(seenAtFirst, ERROR_SUCCESS);
    EXPECT_EQ(GetLastError(), ERROR_BUSY);
}

TEST(LastError, HasATextForEveryNumber) {
    EXPECT_EQ(SystemErrorText(ERROR_FILE_NOT_FOUND), "The system cannot find the file specified.");
    EXPECT_EQ(SystemErrorText(static_cast<DWORD>(E_INVALIDARG)), SystemErrorText(87));
    EXPECT_EQ(SystemErrorText(4711), "Error 4711");
    EXPECT_EQ(SystemErrorText(0x80074711), "Error 2147960593");
}

} // namespace
