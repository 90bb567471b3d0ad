#include <platform/Registry.h>

#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/DiagnosticRecorder.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"

namespace {

using platform::RegistryStore;
using platform::RegistryValue;
using test_support::TemporaryHome;

constexpr const char* kPlainText = "MIME\\Database\\Content Type\\text/plain";

class RegistryTest : public ::testing::Test {
protected:
    // Keys of the current user, each with the text of its value "v".
    using Texts = std::initializer_list<std::pair<const char*, const char*>>;

    void Set(Texts texts) {
        for (const auto& [key, text] : texts)
            ASSERT_EQ(store->SetValue(HKEY_CURRENT_USER, key, "v", {REG_SZ, text}), 0u) << key;
    }
    std::string Get(const char* key, const char* name = "v", HKEY root = HKEY_CURRENT_USER) {
        RegistryValue value;
        const DWORD error = store->GetValue(root, key, name, value);
        return error ? "error " + std::to_string(error) : value.data;
    }
    void ExpectTexts(Texts texts) {
        for (const auto& [key, text] : texts)
            EXPECT_EQ(Get(key), text) << key;
    }
    DWORD Copy(const char* source, const char* target) {
        return store->CopyTree(HKEY_CURRENT_USER, source, HKEY_CURRENT_USER, target);
    }
    DWORD Exists(const char* key) { return store->KeyExists(HKEY_CURRENT_USER, key); }

    TemporaryHome home;
    RegistryStore* store = &RegistryStore::Real();
};

TEST_F(RegistryTest, KeepsValuesOfAnyBytesUnderNamesOfAnyCase) {
    const std::string bytes("\x01\0\xFF", 3);
    ASSERT_EQ(store->SetValue(HKEY_CURRENT_USER, "A\\b\\C", "Name", {REG_BINARY, bytes}), 0u);
    RegistryValue value;
    ASSERT_EQ(store->GetValue(HKEY_CURRENT_USER, "a\\B\\c\\", "NAME", value), ERROR_SUCCESS);
    EXPECT_EQ(value.type, REG_BINARY);
    EXPECT_EQ(value.data, bytes);
    EXPECT_EQ(store->GetValue(HKEY_LOCAL_MACHINE, "a\\b\\c", "name", value), ERROR_FILE_NOT_FOUND);

    Set({{"a", "x"}, {"\xDC", "umlaut"}, {"A", ""}});
    ExpectTexts({{"a", ""}, {"\xDC", "umlaut"}, {"\xFC", "error 2"}}); // ASCII letters only
}

TEST_F(RegistryTest, RefusesArgumentsThatNameNothing) {
    RegistryValue value;
    const CString nul("a\0b", 3);
    EXPECT_EQ(store->GetValue(HKEY_CURRENT_USER, nul, "", value), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(store->SetValue(HKEY_CURRENT_USER, "a", nul, value), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(store->KeyExists(nullptr, "a"), ERROR_INVALID_HANDLE);
    EXPECT_EQ(store->DeleteTree(HKEY_CURRENT_USER, "\\"), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(store->DeleteTree(HKEY_CURRENT_USER, "absent"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Copy("absent", "b"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Exists("b"), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, DeletesATreeAndNothingBesideIt) {
    Set({{"a\\b\\c", "1"}, {"a\\bc", "1"}, {"a\\b%", "1"}, {"a\\b_", "1"}, {"a\\_", "1"}});
    for (const char* key : {"A\\B_", "a\\_", "a\\B"})
        EXPECT_EQ(store->DeleteTree(HKEY_CURRENT_USER, key), ERROR_SUCCESS) << key;
    for (const char* key : {"a\\b", "a\\b\\c", "a\\b_", "a\\_"})
        EXPECT_EQ(Exists(key), ERROR_FILE_NOT_FOUND) << key;
    ExpectTexts({{"a\\bc", "1"}, {"a\\b%", "1"}});
    Set({{"a\\b\\d", "2"}});
    ExpectTexts({{"a\\b\\c", "error 2"}}); // no value comes back with the key
}

TEST_F(RegistryTest, CopiesATreeIntoAnother) {
    Set({{"from", "1"}, {"from\\x\\y", "2"}, {"to", "old"}, {"to\\kept", "3"}});
    ASSERT_EQ(Copy("FROM", "to"), ERROR_SUCCESS);
    ExpectTexts({{"to", "1"}, {"to\\X\\y", "2"}, {"to\\kept", "3"}, {"from\\x\\y", "2"}});
    // Into another root, the way a type is given another type's entry.
    ASSERT_EQ(store->CopyTree(HKEY_CLASSES_ROOT, kPlainText, HKEY_CURRENT_USER, "new/type"), 0u);
    EXPECT_EQ(Get("new/type", "Extension"), ".txt");
}

TEST_F(RegistryTest, CopiesATreeAboveItselfButNotIntoItself) {
    // The source is what it was at the start, though the copy writes into it.
    Set({{"a\\b", "outer"}, {"a\\b\\b", "middle"}, {"a\\b\\b\\b", "inner"}});
    ASSERT_EQ(Copy("a\\b", "a"), ERROR_SUCCESS);
    ExpectTexts(
        {{"a", "outer"}, {"a\\b", "middle"}, {"a\\b\\b", "inner"}, {"a\\b\\b\\b", "inner"}});
    for (const char* target : {"a", "A", "a\\b", "a\\new", "\\a\\\\b\\c"})
        EXPECT_EQ(Copy("a", target), ERROR_INVALID_PARAMETER) << target;
    EXPECT_EQ(Exists("a\\new"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Copy("a", "ab"), ERROR_SUCCESS);
}

TEST_F(RegistryTest, HandlesStandForExistingKeysUntilTheyAreClosed) {
    Set({{"a\\b", "1"}});
    const auto open = [](HKEY above, const char* name, HKEY& key) {
        return static_cast<DWORD>(RegOpenKeyExA(above, name, 0, KEY_READ, &key));
    };
    HKEY above = nullptr, key = nullptr;
    ASSERT_EQ(open(HKEY_CURRENT_USER, "a", above), ERROR_SUCCESS);
    ASSERT_EQ(open(above, "B", key), ERROR_SUCCESS);
    HKEY none = above;
    EXPECT_EQ(open(above, "c", none), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(RegCloseKey(above), LONG{ERROR_SUCCESS});
    EXPECT_EQ(RegCloseKey(above), LONG{ERROR_INVALID_HANDLE});
    EXPECT_EQ(open(above, "b", none), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(key), LONG{ERROR_SUCCESS});
}

TEST_F(RegistryTest, ServesSeveralThreads) {
    std::vector<std::jthread> threads;
    for (const char* key : {"t\\1", "t\\2", "t\\3", "t\\4"})
        threads.emplace_back([this, key] {
            for (int i = 0; i < 10; ++i) {
                Set({{key, "1"}});
                EXPECT_EQ(Get(key), "1");
            }
        });
}

// What only the file can run into.
class RegistryFileTest : public RegistryTest {
protected:
    struct Close {
        void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    };
    using Connection = std::unique_ptr<sqlite3, Close>;

    Connection Run(const char* statement) const {
        sqlite3* connection = nullptr;
        EXPECT_EQ(sqlite3_open(file.c_str(), &connection), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(connection, statement, nullptr, nullptr, nullptr), SQLITE_OK);
        return Connection(connection);
    }
    std::string Extension() { return Get(kPlainText, "Extension", HKEY_CLASSES_ROOT); }

    test_support::DiagnosticRecorder recorder;
    std::string file = home.Path("registry.sqlite");
};

TEST_F(RegistryFileTest, IsPrivateAndFollowsTheUsersDirectory) {
    Set({{"a", "1"}});
    EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(file).permissions()), 0600u);
    {
        const TemporaryHome other;
        ExpectTexts({{"a", "error 2"}});
    }
    ExpectTexts({{"a", "1"}});
    EXPECT_TRUE(recorder.Failures().empty());
}

TEST_F(RegistryFileTest, CallsThatMeetALockedFileTakeASecondTogether) {
    Set({{"a", "1"}});
    test_support::ManualClock clock;
    const platform::ScopedService<platform::Clock> installed(clock);
    Connection other = Run("BEGIN EXCLUSIVE");
    for (int call = 0; call < 5; ++call)
        EXPECT_EQ(store->SetValue(HKEY_CURRENT_USER, "a", "v", {REG_SZ, "2"}), ERROR_BUSY);
    EXPECT_EQ(recorder.Failures().size(), 5u);
    EXPECT_GE(clock.TickCount(), 900u);
    EXPECT_LE(clock.TickCount(), 1000u);
    other.reset();
    ExpectTexts({{"a", "1"}});
    Set({{"a", "3"}}); // ends the impatience, as time does
    for (const DWORD pause : {0u, 10'000u}) {
        other = Run("BEGIN EXCLUSIVE");
        clock.Advance(pause);
        const DWORD begin = clock.TickCount();
        EXPECT_EQ(Get("a"), "error " + std::to_string(ERROR_BUSY));
        EXPECT_GE(clock.TickCount() - begin, 900u);
        other.reset();
    }
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
}

// The file opens, but what it holds cannot be followed.
TEST_F(RegistryFileTest, PutsATruncatedOrDamagedFileAside) {
    Set({{"a", "1"}});
    const std::string whole = home.ReadFile("registry.sqlite").value();
    for (const std::string& damaged :
         {whole.substr(0, whole.size() / 2), whole.substr(0, 4096), whole.substr(0, 60),
          whole.substr(0, 4096) + std::string(whole.size() - 4096, '\xAA')}) {
        home.WriteFile("registry.sqlite", damaged);
        Set({{"b", "2"}});
        EXPECT_EQ(Extension(), ".txt");
    }
    EXPECT_EQ(recorder.Failures().size(), 4u);
    EXPECT_TRUE(std::filesystem::exists(file + ".corrupt-4"));
}

TEST_F(RegistryFileTest, FailsWithACodeWhereNoFileCanBe) {
    std::filesystem::create_directory(file);
    EXPECT_NE(Exists(""), ERROR_SUCCESS);
    EXPECT_TRUE(std::filesystem::is_directory(file));
    const test_support::ScopedVariable root("ZRHTTP_HOME", "/dev/null/below");
    EXPECT_NE(Exists(""), ERROR_SUCCESS);
    EXPECT_EQ(recorder.Failures().size(), 2u);
}

TEST_F(RegistryFileTest, LeavesALaterVersionsFileAlone) {
    ASSERT_EQ(Extension(), ".txt");
    Run("PRAGMA user_version = 2");
    EXPECT_EQ(Extension(), "error " + std::to_string(ERROR_GEN_FAILURE));
    EXPECT_FALSE(std::filesystem::exists(file + ".corrupt-1"));
}

// Several processes meet the same damaged file: one puts it aside, no change is lost.
TEST_F(RegistryFileTest, ServesSeveralProcessesOverADamagedFile) {
    home.WriteFile("registry.sqlite", std::string(9000, '\x55'));
    const auto keys = {"p\\1", "p\\2", "p\\3", "p\\4", "p\\5", "p\\6"};
    std::vector<pid_t> children;
    for (const char* key : keys) {
        children.push_back(fork());
        if (children.back() == 0)
            _exit(static_cast<int>(store->SetValue(HKEY_CURRENT_USER, key, "v", {})));
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    for (const char* key : keys)
        EXPECT_EQ(Exists(key), ERROR_SUCCESS) << key;
    EXPECT_TRUE(std::filesystem::exists(file + ".corrupt-1"));
    EXPECT_FALSE(std::filesystem::exists(file + ".corrupt-2"));
}

} // namespace
