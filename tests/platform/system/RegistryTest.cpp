#include <platform/Registry.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/DiagnosticRecorder.h"
#include "support/ManualClock.h"
#include "support/MemoryRegistry.h"
#include "support/TemporaryHome.h"

namespace {

using platform::RegistryStore;
using platform::RegistryValue;
using test_support::DiagnosticRecorder;
using test_support::ManualClock;
using test_support::MemoryRegistry;
using test_support::TemporaryHome;

constexpr const char* kTypes = "MIME\\Database\\Content Type\\";
constexpr const char* kPlainText = "MIME\\Database\\Content Type\\text/plain";

std::string TextOf(RegistryStore& store, const char* key, const char* name,
                   HKEY root = HKEY_CURRENT_USER) {
    RegistryValue value;
    const DWORD error = store.GetValue(root, key, name, value);
    return error ? "error " + std::to_string(error) : value.data;
}

void Set(RegistryStore& store, const char* key, const char* name, const char* text) {
    ASSERT_EQ(store.SetValue(HKEY_CURRENT_USER, key, name, {REG_SZ, text}), ERROR_SUCCESS);
}

// One contract for the file and its twin in memory.
class RegistryContract : public ::testing::TestWithParam<const char*> {
protected:
    RegistryStore& Store() {
        if (std::string_view(GetParam()) == "File") return RegistryStore::Real();
        return memory;
    }
    DWORD Copy(const char* source, const char* target) {
        return Store().CopyTree(HKEY_CURRENT_USER, source, HKEY_CURRENT_USER, target);
    }
    DWORD Exists(const char* key) { return Store().KeyExists(HKEY_CURRENT_USER, key); }

    TemporaryHome home;
    MemoryRegistry memory;
};

INSTANTIATE_TEST_SUITE_P(Registry, RegistryContract, ::testing::Values("File", "Memory"),
                         [](const auto& param) { return std::string(param.param); });

TEST_P(RegistryContract, BeginsWithTheTypesOfPages) {
    EXPECT_EQ(TextOf(Store(), kPlainText, "Extension", HKEY_CLASSES_ROOT), ".txt");
    const CString html = CString(kTypes) + "TEXT/HTML";
    EXPECT_EQ(TextOf(Store(), html, "extension", HKEY_CLASSES_ROOT), ".htm");
    for (const HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
        EXPECT_EQ(Store().KeyExists(root, ""), ERROR_SUCCESS);
}

TEST_P(RegistryContract, KeepsValuesOfAnyBytes) {
    const std::string bytes("\x01\0\xFF", 3);
    ASSERT_EQ(Store().SetValue(HKEY_CURRENT_USER, "A\\b\\C", "Name", {REG_BINARY, bytes}),
              ERROR_SUCCESS);
    RegistryValue value;
    ASSERT_EQ(Store().GetValue(HKEY_CURRENT_USER, "a\\B\\c\\", "NAME", value), ERROR_SUCCESS);
    EXPECT_EQ(value.type, REG_BINARY);
    EXPECT_EQ(value.data, bytes);
    EXPECT_EQ(Exists("a\\b"), ERROR_SUCCESS);
    EXPECT_EQ(Store().GetValue(HKEY_LOCAL_MACHINE, "a\\b\\c", "name", value), ERROR_FILE_NOT_FOUND);

    Set(Store(), "a", "", "");
    EXPECT_EQ(TextOf(Store(), "A", ""), "");
    EXPECT_EQ(TextOf(Store(), "A", "other"), "error 2");
    Set(Store(), "a\\B\\C", "nAME", "again");
    EXPECT_EQ(TextOf(Store(), "a\\b\\c", "Name"), "again");
    Set(Store(),
        "\xDC"
        "ber",
        "\xE4", "umlaut");
    EXPECT_EQ(TextOf(Store(),
                     "\xDC"
                     "BER",
                     "\xE4"),
              "umlaut");
    EXPECT_EQ(Exists("\xFC"
                     "ber"),
              ERROR_FILE_NOT_FOUND); // ASCII letters only
}

TEST_P(RegistryContract, RefusesArgumentsThatNameNothing) {
    RegistryValue value;
    const CString nul("a\0b", 3);
    EXPECT_EQ(Store().GetValue(HKEY_CURRENT_USER, nul, "", value), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Store().SetValue(HKEY_CURRENT_USER, "a", nul, value), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Store().KeyExists(nullptr, "a"), ERROR_INVALID_HANDLE);
    EXPECT_EQ(Store().DeleteTree(HKEY_CURRENT_USER, "\\"), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Store().DeleteTree(HKEY_CURRENT_USER, "absent"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Copy("absent", "b"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Exists("b"), ERROR_FILE_NOT_FOUND);
}

TEST_P(RegistryContract, DeletesATreeAndNothingBesideIt) {
    for (const char* key : {"a\\b\\c", "a\\bc", "a\\b%", "a\\b_", "a\\_"})
        Set(Store(), key, "v", "1");
    for (const char* key : {"A\\B_", "a\\_", "a\\B"})
        EXPECT_EQ(Store().DeleteTree(HKEY_CURRENT_USER, key), ERROR_SUCCESS) << key;
    for (const char* key : {"a\\b", "a\\b\\c", "a\\b_", "a\\_"})
        EXPECT_EQ(Exists(key), ERROR_FILE_NOT_FOUND) << key;
    for (const char* key : {"a\\bc", "a\\b%"})
        EXPECT_EQ(TextOf(Store(), key, "v"), "1") << key;
    Set(Store(), "a\\b", "other", "2");
    EXPECT_EQ(TextOf(Store(), "a\\b", "v"), "error 2"); // no value comes back with the key
}

TEST_P(RegistryContract, CopiesATreeIntoAnother) {
    Set(Store(), "from", "top", "1");
    Set(Store(), "from\\x\\y", "deep", "2");
    Set(Store(), "to", "TOP", "old");
    Set(Store(), "to\\kept", "k", "3");
    ASSERT_EQ(Copy("FROM", "to"), ERROR_SUCCESS);
    EXPECT_EQ(TextOf(Store(), "to", "top"), "1");
    EXPECT_EQ(TextOf(Store(), "to\\X\\y", "deep"), "2");
    EXPECT_EQ(TextOf(Store(), "to\\kept", "k"), "3");
    EXPECT_EQ(TextOf(Store(), "from\\x\\y", "deep"), "2");
    // Into another root, the way a type is given another type's entry.
    ASSERT_EQ(Store().CopyTree(HKEY_CLASSES_ROOT, kPlainText, HKEY_CURRENT_USER, "new/type"),
              ERROR_SUCCESS);
    EXPECT_EQ(TextOf(Store(), "new/type", "Extension"), ".txt");
}

TEST_P(RegistryContract, RefusesToCopyATreeIntoItself) {
    Set(Store(), "a\\b", "v", "1");
    for (const char* target : {"a", "A", "a\\b", "a\\new", "\\a\\\\b\\c"})
        EXPECT_EQ(Copy("a", target), ERROR_INVALID_PARAMETER) << target;
    EXPECT_EQ(Exists("a\\new"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Copy("a", "ab"), ERROR_SUCCESS);
}

// The source is what it was at the start, though the copy writes into it.
TEST_P(RegistryContract, CopiesATreeOntoOneOfTheKeysAboveIt) {
    Set(Store(), "a\\b", "v", "outer");
    Set(Store(), "a\\b\\b", "v", "middle");
    Set(Store(), "a\\b\\b\\b", "v", "inner");
    ASSERT_EQ(Copy("a\\b", "a"), ERROR_SUCCESS);
    EXPECT_EQ(TextOf(Store(), "a", "v"), "outer");
    EXPECT_EQ(TextOf(Store(), "a\\b", "v"), "middle");
    EXPECT_EQ(TextOf(Store(), "a\\b\\b", "v"), "inner");
    EXPECT_EQ(TextOf(Store(), "a\\b\\b\\b", "v"), "inner");
}

TEST_P(RegistryContract, HandlesStandForExistingKeysUntilTheyAreClosed) {
    const platform::ScopedService<RegistryStore> installed(Store());
    Set(Store(), "a\\b", "v", "1");
    const auto code = [](DWORD error) { return static_cast<LONG>(error); };
    HKEY above = nullptr, key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "a", 0, KEY_READ, &above), code(ERROR_SUCCESS));
    ASSERT_EQ(RegOpenKeyExA(above, "B", 0, KEY_READ, &key), code(ERROR_SUCCESS));
    HKEY none = above;
    EXPECT_EQ(RegOpenKeyExA(above, "c", 0, KEY_READ, &none), code(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(RegCloseKey(above), code(ERROR_SUCCESS));
    EXPECT_EQ(RegCloseKey(above), code(ERROR_INVALID_HANDLE));
    EXPECT_EQ(RegOpenKeyExA(above, "b", 0, KEY_READ, &none), code(ERROR_INVALID_HANDLE));
    EXPECT_EQ(RegCloseKey(key), code(ERROR_SUCCESS));
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), code(ERROR_SUCCESS));
}

TEST_P(RegistryContract, ServesSeveralThreads) {
    std::vector<std::thread> threads;
    std::atomic<int> failures = 0;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&, number] {
            const std::string key = "t\\" + std::to_string(number);
            for (int i = 0; i < 10; ++i) {
                RegistryValue value;
                failures += Store().SetValue(HKEY_CURRENT_USER, key.c_str(), "v", value) != 0;
                failures += Store().GetValue(HKEY_CURRENT_USER, key.c_str(), "v", value) != 0;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
}

// What only the file can run into.
class RegistryFileTest : public ::testing::Test {
protected:
    struct Close {
        void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    };
    std::unique_ptr<sqlite3, Close> OtherConnection() const {
        sqlite3* connection = nullptr;
        EXPECT_EQ(sqlite3_open(file.c_str(), &connection), SQLITE_OK);
        return std::unique_ptr<sqlite3, Close>(connection);
    }
    std::string Extension() { return TextOf(store, kPlainText, "Extension", HKEY_CLASSES_ROOT); }

    TemporaryHome home;
    DiagnosticRecorder recorder;
    RegistryStore& store = RegistryStore::Real();
    std::string file = home.Path("registry.sqlite");
};

TEST_F(RegistryFileTest, IsPrivateAndFollowsTheUsersDirectory) {
    Set(store, "a", "v", "1");
    struct stat status = {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0600u);
    {
        const TemporaryHome other;
        EXPECT_EQ(TextOf(store, "a", "v"), "error 2");
    }
    EXPECT_EQ(TextOf(store, "a", "v"), "1");
    EXPECT_TRUE(recorder.Failures().empty());
}

TEST_F(RegistryFileTest, GivesUpOnALockedFileAfterTwoSeconds) {
    Set(store, "a", "v", "1");
    ManualClock clock;
    const platform::ScopedService<platform::Clock> installed(clock);
    const auto other = OtherConnection();
    ASSERT_EQ(sqlite3_exec(other.get(), "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_EQ(store.SetValue(HKEY_CURRENT_USER, "a", "v", {REG_SZ, "2"}), ERROR_BUSY);
    EXPECT_EQ(recorder.Failures().size(), 1u);
    EXPECT_GE(clock.TickCount(), 2000u);
    EXPECT_LE(clock.TickCount(), 2100u);
    ASSERT_EQ(sqlite3_exec(other.get(), "ROLLBACK", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_EQ(TextOf(store, "a", "v"), "1");
}

TEST_F(RegistryFileTest, PutsAFileThatIsNoDatabaseAsideAndOverwritesNothing) {
    home.WriteFile("registry.sqlite.corrupt-1", "older");
    home.WriteFile("registry.sqlite", std::string(5000, 'x'));
    home.WriteFile("registry.sqlite-journal", "stale");
    EXPECT_EQ(Extension(), ".txt");
    ASSERT_EQ(recorder.Failures().size(), 1u);
    EXPECT_NE(recorder.Failures()[0].find(file + ".corrupt-2"), std::string::npos);
    EXPECT_EQ(home.ReadFile("registry.sqlite.corrupt-1"), "older");
    EXPECT_EQ(home.ReadFile("registry.sqlite.corrupt-2"), std::string(5000, 'x'));
    EXPECT_FALSE(home.ReadFile("registry.sqlite-journal"));
    Set(store, "a", "v", "1");
    EXPECT_EQ(recorder.Failures().size(), 1u);
}

TEST_F(RegistryFileTest, PutsATruncatedFileAside) {
    Set(store, "a", "v", "1");
    const auto whole = std::filesystem::file_size(file);
    for (const std::uintmax_t size : {whole / 2, std::uintmax_t{4096}, std::uintmax_t{60}}) {
        std::filesystem::resize_file(file, size);
        EXPECT_EQ(store.SetValue(HKEY_CURRENT_USER, "b", "v", {REG_SZ, "2"}), ERROR_SUCCESS);
        EXPECT_EQ(Extension(), ".txt");
    }
    EXPECT_EQ(recorder.Failures().size(), 3u);
    EXPECT_TRUE(std::filesystem::exists(file + ".corrupt-3"));
}

// A page in the middle is damaged; the file opens, but what it holds cannot be followed.
TEST_F(RegistryFileTest, PutsAFileWithADamagedPageAside) {
    Set(store, "a", "v", "1");
    std::string content = home.ReadFile("registry.sqlite").value();
    content.replace(4096, content.size() - 4096, content.size() - 4096, '\xAA');
    home.WriteFile("registry.sqlite", content);
    EXPECT_EQ(Extension(), ".txt");
    EXPECT_EQ(recorder.Failures().size(), 1u);
}

TEST_F(RegistryFileTest, FailsWithACodeWhereNoFileCanBe) {
    home.WriteFile("blocked", "no directory");
    std::filesystem::create_directory(file);
    EXPECT_NE(store.KeyExists(HKEY_CURRENT_USER, ""), ERROR_SUCCESS);
    EXPECT_TRUE(std::filesystem::is_directory(file));
    ASSERT_EQ(setenv("ZRHTTP_HOME", home.Path("blocked/below").c_str(), 1), 0);
    EXPECT_NE(store.SetValue(HKEY_CURRENT_USER, "a", "v", {}), ERROR_SUCCESS);
    ASSERT_EQ(setenv("ZRHTTP_HOME", home.Path().c_str(), 1), 0);
    EXPECT_EQ(recorder.Failures().size(), 2u);
}

TEST_F(RegistryFileTest, LeavesALaterVersionsFileAlone) {
    ASSERT_EQ(Extension(), ".txt");
    ASSERT_EQ(
        sqlite3_exec(OtherConnection().get(), "PRAGMA user_version = 2", nullptr, nullptr, nullptr),
        SQLITE_OK);
    EXPECT_EQ(Extension(), "error " + std::to_string(ERROR_GEN_FAILURE));
    EXPECT_FALSE(std::filesystem::exists(file + ".corrupt-1"));
}

// Several processes meet the same damaged file: one puts it aside, no change is lost.
TEST_F(RegistryFileTest, ServesSeveralProcessesOverADamagedFile) {
    constexpr int kProcesses = 6;
    home.WriteFile("registry.sqlite", std::string(9000, '\x55'));
    std::vector<pid_t> children;
    for (int number = 0; number < kProcesses; ++number) {
        const pid_t child = fork();
        if (child == 0) {
            const std::string key = "process\\" + std::to_string(number);
            const DWORD error = store.SetValue(HKEY_CURRENT_USER, key.c_str(), "v", {});
            _exit(static_cast<int>(error));
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    for (int number = 0; number < kProcesses; ++number) {
        const std::string key = "process\\" + std::to_string(number);
        EXPECT_EQ(store.KeyExists(HKEY_CURRENT_USER, key.c_str()), ERROR_SUCCESS) << number;
    }
    EXPECT_TRUE(std::filesystem::exists(file + ".corrupt-1"));
    EXPECT_FALSE(std::filesystem::exists(file + ".corrupt-2"));
}

} // namespace
