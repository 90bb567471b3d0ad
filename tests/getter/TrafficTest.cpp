// Simulating and recording the traffic with a server.

#include <filesystem>
#include <functional>
#include <regex>
#include <set>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <platform/Prompt.h>
#include <platform/Services.h>
#include <platform/Time.h>

#include "getter/TrafficRules.h"
#include "getter/TrafficSimulation.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"

using namespace test_support;
using testing::HasSubstr;

namespace {

// Presses the buttons in turn, then No.
class PressedButtons final : public platform::Prompt {
public:
    std::vector<int> buttons;
    std::vector<std::string> asked;
    std::function<void()> whileAsked = [] {};
    int Ask(const CString& strText, UINT nType) override {
        EXPECT_EQ(nType, 0x103u);
        asked.emplace_back(strText.View());
        whileAsked();
        return asked.size() <= buttons.size() ? buttons[asked.size() - 1] : IDNO;
    }
};

struct Prepared {
    std::string url;
    std::string post; // "(null)" without data
    DWORD length;
};

class Traffic : public testing::Test {
protected:
    TemporaryHome home;
    PressedButtons prompt;
    platform::ScopedService<platform::Prompt> installed{prompt};
    const std::string folder = "drive_c/HttpGet_Simulate/";

    Traffic() { std::filesystem::create_directories(home.Path(folder)); }

    void Rules(const std::string& text) { home.WriteFile(folder + "Simulate.ini", text); }
    std::string File(const std::string& name) {
        return home.ReadFile(folder + name).value_or("(none)");
    }
    Prepared Prepare(const std::string& url, const char* post = nullptr,
                     const char* headers = nullptr, DWORD length = 0xFFFFFFFFu) {
        CString strUrl(url);
        const void* data = post;
        TrafficSimulation().PrepareRequest(strUrl, data, length, headers);
        return {std::string(strUrl.View()), data ? static_cast<const char*>(data) : "(null)",
                length};
    }
    // The page that the rules have for the request; what fails the request becomes "-".
    std::string Page(const std::string& url, const char* post = nullptr,
                     DWORD length = 0xFFFFFFFFu) {
        const std::string page = Prepare("SIM:" + url, post, nullptr, length).url;
        return page.starts_with("c:\\") ? "-" : page;
    }
    void Result(DWORD code, const char* page = "page", const char* error = "") {
        TrafficSimulation().RecordResult(code, page, error);
    }
    // Names of the files made, without the INI files.
    std::set<std::string> ResultFiles() {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(home.Path(folder))) {
            if (entry.path().filename() == "Simulate.ini") continue; // the user's
            EXPECT_EQ(entry.status().permissions(), std::filesystem::perms(0600)) << entry;
            if (entry.path().extension() != ".ini") names.insert(entry.path().filename());
        }
        return names;
    }
};

} // namespace

TEST_F(Traffic, ARequestWithoutPrefixPassesUntouched) {
    const Prepared request = Prepare("http://h/SIM:", "a=1", "X: 1", 2);
    EXPECT_EQ(request.url, "http://h/SIM:");
    EXPECT_EQ(request.post, "a=1");
    EXPECT_EQ(request.length, 2u);
    Result(0);
    EXPECT_EQ(Prepare("sim:http://h/").url, "sim:http://h/");
    EXPECT_TRUE(ResultFiles().empty());
    EXPECT_EQ(File("Saved.ini"), "(none)");
}

TEST_F(Traffic, TheFirstRuleWhoseUrlAndPostTextFitAnswers) {
    Rules("[General]\nURL=http://h/\nSimPage=no rule\n"
          "[rule0]\nURL=http://h/\nSimPage=no rule\n"
          "[Rule]\n"
          "[RuleEmpty]\nURL=http://h/\nPostData=\nSimPage=empty\n"
          "[Rule2]\nURL=http://h/\nPostData=a=1\nPostDataPart0=z\nSimPage=exact\n"
          "[RuleLogin]\nURL=http://h/\nPostDataPart0=user\nPostDataPart1=pin\n"
          "PostDataPart3=skipped\nSimPage=parts\n"
          "[RuleParts]\nURL=http://h/\nPostDataPart0=user\nSimPage=later\n"
          "[RuleAny]\nURL=http://any/\nPostData=\xA3\nSimPage=any\n"
          "[RuleNoPage]\nURL=http://none/\n");
    EXPECT_EQ(Page("http://h/"), "empty");
    EXPECT_EQ(Page("http://h/", ""), "empty");
    EXPECT_EQ(Page("http://h/", "a=1"), "exact");
    EXPECT_EQ(Page("http://h/", "a=12", 3), "exact");
    EXPECT_EQ(Page("http://h/", "a=1\0x", 5), "exact");
    EXPECT_EQ(Page("http://h/", "pin=1&user=2"), "parts");
    EXPECT_EQ(Page("http://h/", "user=2"), "later");
    EXPECT_EQ(Page("http://h/", "A=1"), "-");
    EXPECT_EQ(Page("http://H/"), "-");
    EXPECT_EQ(Page("http://any/", "whatever"), "any");
    EXPECT_EQ(Page("http://none/"), "");
    EXPECT_EQ(prompt.asked.size(), 2u);

    const Prepared simulated = Prepare("SIM:http://h/", "a=1", "X: 1", 3);
    EXPECT_EQ(simulated.post, "(null)");
    EXPECT_EQ(simulated.length, 3u);
    EXPECT_EQ(File("Saved.ini"), "(none)");
}

TEST_F(Traffic, OddRulesFilesAreReadToTheirEnd) {
    std::string rules;
    for (int rule = 0; rule < 10'000; ++rule)
        rules += "[Rule" + std::to_string(rule) + "]\nURL=http://h/" + std::to_string(rule) + "\n";
    rules += "SimPage=last\n[" + std::string(50'000, 'R') + "]\n[Rule\n[]\n=\n";
    rules += "[RuleLong]\nURL=http://long/\nSimPage=" + std::string(3'000, 'p') + "\n";
    rules += "[RuleParts]\nURL=http://parts/\nSimPage=parts\n";
    for (int part = 0; part < 5'000; ++part)
        rules += "PostDataPart" + std::to_string(part) + "=x\n";
    Rules(rules);
    EXPECT_EQ(Page("http://h/9999"), "last");
    EXPECT_EQ(Page("http://long/"), std::string(1'999, 'p'));
    EXPECT_EQ(Page("http://parts/", "x"), "parts");
    CStringArray names;
    const std::string file = home.Path(folder + "Simulate.ini");
    EXPECT_EQ(TrafficRules::ReadSectionNames(names, file.c_str()), 10'004);
    EXPECT_EQ(names[9'999], "Rule9999");
    EXPECT_EQ(names[10'000].GetLength(), 50'000);
    EXPECT_EQ(names[10'001], ""); // ends nothing
    EXPECT_EQ(names[10'003], "RuleParts");
    EXPECT_EQ(TrafficRules::ReadSectionNames(names, "c:\\missing.ini"), 0);
}

TEST_F(Traffic, WithoutARuleTheUserDecides) {
    Rules("[Other]\nkey=kept\n");
    EXPECT_EQ(Prepare("SIM:abc://host//a", "u=1\r\n[Rule]\nURL=x\n", "X: 1").url,
              "c:\\HttpGet_Simulate\\abc_\\host\\a");
    EXPECT_EQ(prompt.asked.at(0),
              "HttpGetSimulate: No rule found for simulating this page:\n\nURL=abc://host//a\n"
              "PostData=u=1\r\n[Rule]\nURL=x\n\n\nPress Yes : use the actual URL and SAVE the "
              "page.\nPress No  : fail this request.\nPress Cancel : retry to find a rule!");
    EXPECT_EQ(File("Simulate.ini"), "[Other]\nkey=kept\n[Failed-NoRuleFound]\n"
                                    "URL=abc://host//a\nPostData=u=1 [Rule]URL=x\n"
                                    "SimPage=c:\\HttpGet_Simulate\\...\n");

    prompt = {};
    prompt.buttons = {IDCANCEL, 99, IDYES};
    const Prepared real = Prepare("SIM:SAVE:http://h/", "p", "X: 1");
    EXPECT_EQ(real.url, "http://h/");
    EXPECT_EQ(real.post, "p");
    EXPECT_EQ(prompt.asked.size(), 3u);
    EXPECT_THAT(File("Saved.ini"), HasSubstr("URL={http://h/}\r\nPostData={p}\r\n"
                                             "OrigPostData_BeforeSim={p}\r\nHttpHeader={X: 1}"));

    prompt = {};
    prompt.buttons = {IDCANCEL};
    prompt.whileAsked = [&] { Rules("[RuleNew]\nURL=http://h/\nSimPage=new\n"); };
    EXPECT_EQ(Page("http://h/"), "new");

    prompt = {};
    prompt.buttons = {0};
    EXPECT_EQ(Page("http://other/"), "-") << "a question that could not be put";
    EXPECT_EQ(prompt.asked.size(), 1u);
}

TEST_F(Traffic, ARecordingHoldsTheRequestAndItsOneFinalResult) {
    ManualClock clock;
    platform::ScopedService<platform::Clock> installedClock(clock);
    Rules("[Rule1]\nURL=http://h/\nSimPage=http://sim/\n");
    const Prepared simulated = Prepare("SIM:SAVE:http://h/", "a=1", "X: 1\r\nRetCode=0\r\n[S]");
    EXPECT_EQ(simulated.url, "http://sim/");
    EXPECT_EQ(simulated.post, "(null)");
    Result(10);
    Result(11);
    EXPECT_TRUE(ResultFiles().empty());
    Result(22, "one\ntwo", "why");
    Result(0, "another");
    const std::set<std::string> files = ResultFiles();
    ASSERT_EQ(files.size(), 2u);
    const std::string first = *files.begin();
    const std::string section = first.substr(0, first.rfind('_'));
    EXPECT_THAT(section, testing::MatchesRegex("[0-9]{4}[.][0-9]{2}[.][0-9]{2} [0-9]{2}[.][0-9]{2}"
                                               "[.][0-9]{2} [0-9]+"));
    EXPECT_TRUE(
        section.starts_with(CTime::GetCurrentTime().FormatGmt("%Y.%d.%m %H.%M.%S ").GetString()));
    EXPECT_EQ(File("Saved.ini"),
              "[" + section +
                  "]\r\nURL={http://sim/}\r\nPostData={}\r\nOrigPostData_BeforeSim={a=1}\r\n"
                  "HttpHeader={X: 1 RetCode=0 [S]}\r\nRetCode=22\r\n");
    EXPECT_EQ(File(section + "_Page.html"), "one\r\ntwo");
    EXPECT_EQ(File(section + "_ErrMsg.txt"), "why");
}

TEST_F(Traffic, EveryRequestDropsTheOneThatWaitsAndHasASectionOfItsOwn) {
    Prepare("SAVE:http://one/");
    Prepare("http://two/");
    Result(0);
    EXPECT_TRUE(ResultFiles().empty());
    for (int request = 0; request < 20; ++request) {
        EXPECT_EQ(Prepare("SAVE:http://h/").url, "http://h/");
        Result(0);
    }
    EXPECT_EQ(ResultFiles().size(), 40u);
}

// Forked, they count the same ticks.
TEST_F(Traffic, ProcessesThatRecordAtTheSameMomentLoseNothing) {
    constexpr int kProcesses = 20;
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        children.push_back(fork());
        if (children.back() != 0) continue;
        Prepare("SAVE:http://h/" + std::to_string(process));
        Result(0);
        _exit(0);
    }
    for (const pid_t child : children)
        waitpid(child, nullptr, 0);
    const std::string record = File("Saved.ini");
    for (int process = 0; process < kProcesses; ++process)
        EXPECT_THAT(record, HasSubstr("URL={http://h/" + std::to_string(process) + "}"));
    CStringArray names;
    EXPECT_EQ(TrafficRules::ReadSectionNames(names, home.Path(folder + "Saved.ini").c_str()),
              kProcesses);
    const std::regex result("RetCode=0");
    EXPECT_EQ(std::distance(std::sregex_iterator(record.begin(), record.end(), result), {}),
              kProcesses);
    EXPECT_EQ(ResultFiles().size(), 2u * kProcesses);
}

TEST_F(Traffic, WithoutTheDirectoryNothingIsWritten) {
    std::filesystem::remove_all(home.Path("drive_c"));
    EXPECT_EQ(Page("http://h/"), "-");
    EXPECT_EQ(Prepare("SAVE:http://h/").url, "http://h/");
    Result(0);
    EXPECT_FALSE(std::filesystem::exists(home.Path(folder)));
}

TEST_F(Traffic, RequestsOfSeveralThreadsGetAtMostOneResultEach) {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([this] {
            for (int request = 0; request < 10; ++request) {
                EXPECT_EQ(Prepare("SAVE:http://h/", "post").url, "http://h/");
                Result(0);
            }
        });
    threads.clear();
    const std::size_t count = ResultFiles().size();
    EXPECT_GE(count, 2u);
    EXPECT_LE(count, 80u);
    EXPECT_EQ(count % 2, 0u);
}
