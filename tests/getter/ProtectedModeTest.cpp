#include "getter/ProtectedMode.h"

#include <filesystem>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <platform/Exceptions.h>
#include <platform/Library.h>

#include "support/TemporaryHome.h"

namespace {

using namespace testing;

constexpr const char* kExport = "MAPI_IEIsProtectedModeURL";

int scriptedStatus = 0;
std::string askedUrl;

int Answer(const char* url) {
    askedUrl = url;
    return scriptedStatus;
}

class MockLoader : public platform::LibraryLoader {
public:
    MOCK_METHOD(HMODULE, Load, (const char*), (override));
    MOCK_METHOD(FARPROC, FindProc, (HMODULE, const char*), (override));
    MOCK_METHOD(BOOL, Free, (HMODULE), (override));
};

class ProtectedModeTest : public Test {
protected:
    ProtectedModeTest() {
        for (const char* directory : {"group1/module15", "group3/module13", "group4/module15"})
            home.WriteFile(std::string("data/") + directory + "/ZrMwMApiWrapper.dll", "");
        ON_CALL(loader, Load).WillByDefault(Return(module));
        ON_CALL(loader, FindProc(module, StrEq(kExport)))
            .WillByDefault(Return(reinterpret_cast<FARPROC>(&Answer)));
    }
    // Each loading is followed by an unloading.
    void ExpectLoads(int count) {
        EXPECT_CALL(loader, Load).Times(count);
        EXPECT_CALL(loader, Free(module)).Times(count);
    }
    static BOOL Ask(int group, const char* url = "http://h/") {
        return AskProtectedMode(static_cast<EZrAbAppGroup>(group), url);
    }
    // The log since the last call.
    std::string Log() const {
        const std::string log = home.ReadFile("log/zrhttpbase3.log").value_or("");
        std::filesystem::remove(home.Path("log/zrhttpbase3.log"));
        return log;
    }

    const Matcher<std::string> isOneFailure =
        MatchesRegex(std::string(".*\terror\tProtectedMode.cpp:[0-9]+\tException thrown within "
                                 "method ") +
                     kExport + "\n");
    test_support::TemporaryHome home;
    NiceMock<MockLoader> loader;
    const HMODULE module = reinterpret_cast<HMODULE>(&loader);
    platform::ScopedService<platform::LibraryLoader> installed{loader};
};

TEST_F(ProtectedModeTest, TheStatusDecidesAndEachQuestionLoadsAnew) {
    ExpectLoads(4);
    for (const auto& [status, expected] :
         {std::pair{0, TRUE}, {1, FALSE}, {static_cast<int>(E_FAIL), FALSE}, {2, FALSE}}) {
        scriptedStatus = status;
        EXPECT_EQ(Ask(1, "https://u@h/?a b"), expected) << status;
        EXPECT_EQ(askedUrl, "https://u@h/?a b");
    }
    EXPECT_EQ(Log(), "");
}

TEST_F(ProtectedModeTest, LooksInTheGroupsDirectoryAndRecordsAMissingWrapper) {
    ExpectLoads(1);
    scriptedStatus = 0;
    EXPECT_EQ(Ask(3), TRUE);
    EXPECT_EQ(Log(), "");
    for (const int group : {4, 2}) {
        EXPECT_EQ(Ask(group), FALSE);
        EXPECT_THAT(Log(), isOneFailure) << group;
    }
}

TEST_F(ProtectedModeTest, RecordsNoUnloadableWrapper) {
    EXPECT_CALL(loader, Load).WillOnce(Return(nullptr));
    EXPECT_CALL(loader, Free).Times(0);
    EXPECT_EQ(Ask(1), FALSE);
    EXPECT_EQ(Log(), "");
}

TEST_F(ProtectedModeTest, RecordsFailuresWhileAskingAndUnloadsTheLibrary) {
    ExpectLoads(3);
    EXPECT_CALL(loader, FindProc)
        .WillOnce(Return(FARPROC{}))
        .WillOnce(Throw(std::runtime_error("while asking")))
        .WillOnce([]() -> FARPROC { AfxThrowOleException(E_FAIL); });
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Ask(1), FALSE);
        EXPECT_THAT(Log(), isOneFailure) << round;
    }
}

// The real wrapper beside its list of hosts.
class WrapperTest : public Test {
protected:
    WrapperTest() {
        List("");
        std::filesystem::copy_file(WRAPPER_FILE, wrapper);
    }
    void List(const char* text) const { home.WriteFile("data/group2/module15/zones.ini", text); }
    static BOOL IsProtected(const char* url) { return AskProtectedMode(eAppGroup_2, url); }
    // The status of the export itself.
    int Status(const char* url) const {
        const HMODULE module = LoadLibraryA(wrapper.c_str());
        const FARPROC proc = GetProcAddress(module, kExport);
        const int status = proc ? reinterpret_cast<int (*)(const char*)>(proc)(url) : -1;
        FreeLibrary(module);
        return status;
    }

    test_support::TemporaryHome home;
    std::string wrapper = home.Path("data/group2/module15/ZrMwMApiWrapper.dll");
};

TEST_F(WrapperTest, TrustsTheListedHostsOnlyAndRefusesWhatIsNoWebAddress) {
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
    std::filesystem::remove(home.Path("data/group2/module15/zones.ini"));
    EXPECT_EQ(IsProtected("http://h.test/"), TRUE);
    EXPECT_EQ(IsProtected("mailto:h.test"), FALSE);
}

} // namespace
