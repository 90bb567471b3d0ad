#include "getter/ProtectedMode.h"

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <platform/Exceptions.h>
#include <platform/Library.h>
#include <platform/UserPaths.h>

#include "support/TemporaryHome.h"

namespace {

using platform::LibraryLoader;
using test_support::TemporaryHome;

constexpr const char* kRecord =
    "\terror\tProtectedMode.cpp:%LINE%\tException thrown within method MAPI_IEIsProtectedModeURL";

// Answers with a status or throws instead of loading anything, and counts.
class ScriptedLoader : public LibraryLoader {
public:
    enum class Behaviour { answer, notLoadable, noExport, throwsStandard, throwsFramework };

    HMODULE Load(const char*) override {
        if (behaviour == Behaviour::notLoadable) return nullptr;
        ++loads;
        return reinterpret_cast<HMODULE>(this);
    }
    FARPROC FindProc(HMODULE hModule, const char* pszName) override {
        EXPECT_EQ(hModule, reinterpret_cast<HMODULE>(this));
        EXPECT_STREQ(pszName, "MAPI_IEIsProtectedModeURL");
        switch (behaviour) {
        case Behaviour::noExport:
            return nullptr;
        case Behaviour::throwsStandard:
            throw std::runtime_error("while asking");
        case Behaviour::throwsFramework:
            AfxThrowOleException(E_FAIL);
        default:
            return reinterpret_cast<FARPROC>(&Answer);
        }
    }
    BOOL Free(HMODULE hModule) override {
        EXPECT_EQ(hModule, reinterpret_cast<HMODULE>(this));
        ++frees;
        return TRUE;
    }

    Behaviour behaviour = Behaviour::answer;
    int loads = 0;
    int frees = 0;
    static inline int status = 0;
    static inline std::string asked;

private:
    static int Answer(const char* pszUrl) {
        asked = pszUrl;
        return status;
    }
};

class ProtectedModeTest : public ::testing::Test {
protected:
    void PutWrapper(const std::string& directory) const {
        home.WriteFile("data/" + directory + "/ZrMwMApiWrapper.dll", "");
    }
    // The record's text when the log holds exactly one, else what the log holds.
    bool HasOneFailureRecord() const {
        const std::string log = home.ReadFile("log/zrhttpbase3.log").value_or("");
        const std::string expected = kRecord;
        const std::string head = expected.substr(0, expected.find("%LINE%"));
        const std::string tail = expected.substr(expected.find("%LINE%") + 6) + "\n";
        return log.find(head) != std::string::npos && log.ends_with(tail) &&
               log.find('\n') == log.size() - 1;
    }
    bool HasNoRecord() const { return !home.ReadFile("log/zrhttpbase3.log"); }

    TemporaryHome home;
    ScriptedLoader loader;
    platform::ScopedService<LibraryLoader> installed{loader};
};

TEST_F(ProtectedModeTest, TheStatusDecidesAndEachQuestionLoadsAnew) {
    PutWrapper("group2/module15");
    for (const auto& [status, expected] :
         {std::pair{0, TRUE}, {1, FALSE}, {static_cast<int>(E_FAIL), FALSE}, {2, FALSE}}) {
        ScriptedLoader::status = status;
        EXPECT_EQ(AskProtectedMode(eAppGroup_2, "https://u@h/?a b"), expected) << status;
        EXPECT_EQ(ScriptedLoader::asked, "https://u@h/?a b");
    }
    EXPECT_EQ(loader.loads, 4);
    EXPECT_EQ(loader.frees, 4);
    EXPECT_TRUE(HasNoRecord());
}

TEST_F(ProtectedModeTest, LooksInTheGroupsDirectory) {
    ScriptedLoader::status = 0;
    PutWrapper("group3/module13");
    PutWrapper("group1/module15");
    PutWrapper("group4/module15");
    EXPECT_EQ(AskProtectedMode(eAppGroup_3, "http://h/"), TRUE);
    EXPECT_EQ(AskProtectedMode(eAppGroup_1, "http://h/"), TRUE);
    EXPECT_TRUE(HasNoRecord());
    EXPECT_EQ(AskProtectedMode(static_cast<EZrAbAppGroup>(4), "http://h/"), FALSE);
    EXPECT_TRUE(HasOneFailureRecord());
    EXPECT_EQ(loader.loads, 2);
}

TEST_F(ProtectedModeTest, AMissingWrapperIsRecordedAnUnloadableOneIsNot) {
    PutWrapper("group2/module15");
    loader.behaviour = ScriptedLoader::Behaviour::notLoadable;
    EXPECT_EQ(AskProtectedMode(eAppGroup_2, "http://h/"), FALSE);
    EXPECT_TRUE(HasNoRecord());
    EXPECT_EQ(loader.frees, 0);
    EXPECT_EQ(AskProtectedMode(eAppGroup_1, "http://h/"), FALSE);
    EXPECT_TRUE(HasOneFailureRecord());
}

TEST_F(ProtectedModeTest, FailuresWhileAskingAreRecordedAndTheLibraryIsUnloaded) {
    PutWrapper("group2/module15");
    for (const auto behaviour :
         {ScriptedLoader::Behaviour::noExport, ScriptedLoader::Behaviour::throwsStandard,
          ScriptedLoader::Behaviour::throwsFramework}) {
        std::filesystem::remove(home.Path("log/zrhttpbase3.log"));
        loader.behaviour = behaviour;
        EXPECT_EQ(AskProtectedMode(eAppGroup_2, "http://h/"), FALSE);
        EXPECT_TRUE(HasOneFailureRecord());
    }
    EXPECT_EQ(loader.loads, 3);
    EXPECT_EQ(loader.frees, 3);
}

// The real wrapper beside its list of hosts.
class WrapperTest : public ::testing::Test {
protected:
    WrapperTest() {
        home.WriteFile("data/group2/module15/zones.ini", "");
        std::filesystem::copy_file(WRAPPER_FILE, Directory() + "ZrMwMApiWrapper.dll");
    }
    std::string Directory() const { return home.Path("data/group2/module15") + "/"; }
    void List(const char* text) const { home.WriteFile("data/group2/module15/zones.ini", text); }
    static BOOL IsProtected(const char* url) { return AskProtectedMode(eAppGroup_2, url); }
    // The status of the export itself.
    int Status(const char* url) const {
        const HMODULE module = LoadLibraryA((Directory() + "ZrMwMApiWrapper.dll").c_str());
        const FARPROC proc = GetProcAddress(module, "MAPI_IEIsProtectedModeURL");
        if (!proc) return -1;
        const int status = reinterpret_cast<int (*)(const char*)>(proc)(url);
        FreeLibrary(module);
        return status;
    }

    TemporaryHome home;
};

TEST_F(WrapperTest, TrustsTheListedHostsOnly) {
    List("\xEF\xBB\xBFother.test=1\n[Elsewhere]\nlate.test\n[ trustedhosts ]\r\n; note.test\n"
         "www.Bank.test=1\n plain.test \n*.below.test=1\nout.test=0\n[2001:DB8::1]=1\n[::1]\n"
         "[More]\nmore.test\n");
    for (const char* url : {"https://www.bank.test/", "HTTP://WWW.BANK.TEST:8443?x",
                            "http://u:p@x@plain.test", "http://plain.test./#a",
                            "http://a.b.BELOW.test/", "http://[2001:db8::1]:80/", "http://[::1]"})
        EXPECT_EQ(Status(url), S_FALSE) << url;
    for (const char* url :
         {"http://bank.test/", "http://below.test/", "http://xbelow.test/", "http://out.test/",
          "http://other.test/", "http://late.test/", "http://more.test/", "http://note.test/",
          "http://evil.test/www.bank.test", "http://www.bank.test@evil.test/",
          "http://evil.test\\@plain.test/", "http://*.below.test.evil.test/"})
        EXPECT_EQ(Status(url), S_OK) << url;
}

TEST_F(WrapperTest, RefusesWhatIsNoWebAddress) {
    List("[TrustedHosts]\nh.test\n");
    EXPECT_EQ(Status(nullptr), E_INVALIDARG);
    for (const char* url :
         {"", "h.test", "ftp://h.test/", "http:/h.test", "http://", "http:///x", "http://u@/",
          "http://:80/", "http://[::1", "http://h.test:8x/", "http://h.test:123456/",
          "http://h.test /", "http://[::1]x/", "http://h.\ntest/", "http://./"})
        EXPECT_EQ(Status(url), E_INVALIDARG) << url;
}

TEST_F(WrapperTest, AnswersTheQuestionAndSeesAChangedListAtOnce) {
    EXPECT_EQ(IsProtected("http://h.test/"), TRUE);
    List("[TrustedHosts]\nh.test=1\n");
    EXPECT_EQ(IsProtected("http://h.test/"), FALSE);
    std::filesystem::remove(Directory() + "zones.ini");
    EXPECT_EQ(IsProtected("http://h.test/"), TRUE);
    EXPECT_EQ(IsProtected("mailto:h.test"), FALSE);
    EXPECT_FALSE(home.ReadFile("log/zrhttpbase3.log"));
}

} // namespace
