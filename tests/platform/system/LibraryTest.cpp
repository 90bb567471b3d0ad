#include <platform/Library.h>

#include <filesystem>

#include <gtest/gtest.h>
#include <platform/LastError.h>

#include "support/TemporaryHome.h"

namespace {

using test_support::TemporaryHome;

constexpr const char* kExport = "MAPI_IEIsProtectedModeURL";

TEST(Library, FindsItsOwnExportsOnly) {
    const HMODULE library = LoadLibraryA(WRAPPER_FILE);
    ASSERT_TRUE(library);
    EXPECT_TRUE(GetProcAddress(library, kExport));
    for (const char* name : {"malloc", "NoSuchExport"}) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(GetProcAddress(library, name)) << name;
        EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
    }
    EXPECT_TRUE(FreeLibrary(library));
    EXPECT_FALSE(GetProcAddress(nullptr, "malloc"));
    EXPECT_FALSE(FreeLibrary(nullptr));
}

TEST(Library, IsFoundByDrivePathAndInTheCurrentDirectory) {
    const TemporaryHome home;
    home.WriteFile("drive_c/text.dll", "no library");
    std::filesystem::copy_file(WRAPPER_FILE, home.Path("drive_c/copy.dll"));
    const HMODULE byDrivePath = LoadLibraryA("c:\\copy.dll");
    EXPECT_TRUE(byDrivePath);
    EXPECT_TRUE(FreeLibrary(byDrivePath));

    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(home.Path("drive_c"));
    const HMODULE byName = LoadLibraryA("copy.dll");
    std::filesystem::current_path(before);
    EXPECT_TRUE(byName);
    EXPECT_TRUE(FreeLibrary(byName));
}

TEST(Library, WhatCannotBeLoadedIsNotFound) {
    const TemporaryHome home;
    home.WriteFile("drive_c/text.dll", "no library");
    // The system's own directories are not searched: libc.so.6 is no file of the current one.
    for (const char* name : {"c:\\text.dll", "c:\\missing.dll", "c:\\..\\x.dll", "libc.so.6", ""}) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(LoadLibraryA(name)) << name;
        EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND) << name;
    }
}

} // namespace
