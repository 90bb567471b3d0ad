// A page through getter, out-of-process back-end and Chromium, beside the same page through
// Playwright and Puppeteer, each with a Chromium of its own.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <ZrHbUHttpGet.h>
#include <platform/BrowserSurroundings.h>

#include "BenchServer.h"
#include "Measurement.h"
#include "PeerProcess.h"

namespace {

constexpr std::size_t kPageSize = 4000;
constexpr double kOpenGoal = 0.65;
constexpr double kCycleGoal = 0.75;
constexpr double kPostCostGoal = 5.0; // milliseconds
constexpr const char* kPostData = "vertrag=4711&betrag=6%2C40";
// Lets the processes of a closed browser go, so that their end falls into nobody's time.
constexpr std::chrono::milliseconds kAfterLaunch{400};

struct Rounds {
    int warmUp;
    int open;
    int launch;
};

struct Contender {
    std::string name;
    std::function<double()> run; // milliseconds
    std::vector<double> samples;
};

std::string Page() {
    std::string page = "<!DOCTYPE html><html><head><title>Konto</title></head><body><table>\n";
    while (page.size() < kPageSize - 100)
        page += "<tr><td>12.05.2010</td><td>Zahlung</td><td>1'234.50</td></tr>\n";
    return page + "</table></body></html>\n";
}

void Check(bool isRight, const std::string& what) {
    if (!isRight) throw std::runtime_error(what);
}

void Connect(CZrHbUHttpGet& getter) {
    CString error;
    Check(getter.ConnectV2(nullptr, error, CZrHbUHttpGet::eVisible,
                           CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, "") == 0,
          error.GetString());
}

// With post data, a header block, both or neither (null).
void OpenAndRead(CZrHbUHttpGet& getter, const std::string& url, const std::string& page,
                 const char* pszPost = nullptr, const char* pszHeaders = nullptr) {
    CString error;
    CString location;
    CByteBuffer body(8192, 8192);
    std::string data = pszPost ? pszPost : "";
    Check(getter.Open(url.c_str(), error, pszPost ? data.data() : nullptr,
                      static_cast<DWORD>(data.size()), pszHeaders, FALSE) == 0,
          error.GetString());
    Check(getter.BusyRead(body, error, location, 10000, FALSE, 10000, nullptr, nullptr) == 0,
          error.GetString());
    Check(std::string(body.GetData(), body.GetData() + body.GetSize()) == page,
          "the getter read another page");
}

double Timed(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
        .count();
}

double Checked(const PeerAnswer& answer, const std::string& page) {
    Check(answer.bytes == page.size(), "a peer read another page");
    return answer.milliseconds;
}

// In another order each round, so that none always runs behind the same neighbour.
void RunShuffled(std::vector<Contender>& contenders, int warmUp, int rounds) {
    std::mt19937 random(1);
    std::vector<Contender*> order;
    for (Contender& contender : contenders)
        order.push_back(&contender);
    for (int round = -warmUp; round < rounds; ++round) {
        std::shuffle(order.begin(), order.end(), random);
        for (Contender* contender : order) {
            const double milliseconds = contender->run();
            if (round >= 0) contender->samples.push_back(milliseconds);
        }
    }
}

void PrintTable(const char* title, const std::vector<Contender>& contenders) {
    std::printf("\n%s, %zu rounds, milliseconds\n%-24s %9s %9s %9s\n", title,
                contenders[0].samples.size(), "", "median", "p90", "ratio");
    for (const Contender& contender : contenders) {
        const double median = Quantile(contender.samples, 0.5);
        std::printf("%-24s %9.1f %9.1f", contender.name.c_str(), median,
                    Quantile(contender.samples, 0.9));
        if (contenders.size() > 1)
            std::printf(" %9.2f", median / Quantile(contenders[1].samples, 0.5));
        std::printf("\n");
    }
}

// The first contender is ours, the second one the peer to compare with.
void Print(const char* title, const std::vector<Contender>& contenders, double goal) {
    PrintTable(title, contenders);
    if (contenders.size() > 1) std::printf("goal: a ratio of at most %.2f\n", goal);
}

class Bench {
public:
    explicit Bench(const Rounds& rounds) : m_rounds(rounds) {}

    void OpenPages() {
        CZrHbUHttpGet getter(eAppGroup_2);
        Connect(getter);
        std::vector<Contender> contenders{
            {"getter, Chromium",
             [&] { return Timed([&] { OpenAndRead(getter, m_server.Url(), m_page); }); },
             {}}};
        std::vector<std::unique_ptr<PeerProcess>> peers;
        for (const char* driver : {"playwright", "puppeteer"}) {
            if (!m_hasPeers) break;
            PeerProcess& peer = *peers.emplace_back(new PeerProcess(driver, m_chromium));
            peer.StartBrowser();
            contenders.push_back(
                {driver, [&] { return Checked(peer.Open(m_server.Url()), m_page); }, {}});
        }
        RunShuffled(contenders, m_rounds.warmUp, m_rounds.open);
        getter.Disconnect(0);
        Print("open and read", contenders, kOpenGoal);
    }

    // Post data go to a connection of their own, so that they go once. What that costs is told by a
    // request of the same kind without them: it, too, is changed on its way.
    void Post() {
        CZrHbUHttpGet getter(eAppGroup_2);
        Connect(getter);
        getter.SetSecurityTimeout(0); // no pause before post data that are sent again
        const auto open = [&](const char* pszPost, const char* pszHeaders) {
            return Timed([&] { OpenAndRead(getter, m_server.Url(), m_page, pszPost, pszHeaders); });
        };
        std::vector<Contender> contenders{
            {"getter, POST", [&] { return open(kPostData, nullptr); }, {}},
            {"getter, GET and header", [&] { return open(nullptr, "X-Client: 3\r\n"); }, {}}};
        std::unique_ptr<PeerProcess> peer;
        if (m_hasPeers) {
            peer = std::make_unique<PeerProcess>("playwright", m_chromium);
            peer->StartBrowser();
            contenders.push_back({"playwright, POST",
                                  [&] { return Checked(peer->Post(m_server.Url()), m_page); },
                                  {}});
        }
        RunShuffled(contenders, m_rounds.warmUp, m_rounds.open);
        getter.Disconnect(0);
        PrintTable("post data", contenders);
        std::printf("post data cost %.1f ms; goal: at most %.1f\n",
                    Quantile(contenders[0].samples, 0.5) - Quantile(contenders[1].samples, 0.5),
                    kPostCostGoal);
    }

    void LaunchBrowsers() {
        std::vector<Contender> contenders{
            {"getter, Chromium", [&] { return Settled(Cycle()); }, {}}};
        std::unique_ptr<PeerProcess> peer;
        if (m_hasPeers) {
            peer = std::make_unique<PeerProcess>("playwright", m_chromium);
            contenders.push_back(
                {"playwright",
                 [&] { return Settled(Checked(peer->Launch(m_server.Url()), m_page)); },
                 {}});
        }
        RunShuffled(contenders, 1, m_rounds.launch);
        Print("start, first page, end", contenders, kCycleGoal);
    }

    bool HasPeers() const { return m_hasPeers; }
    std::size_t PageSize() const { return m_page.size(); }

private:
    double Cycle() {
        return Timed([&] {
            CZrHbUHttpGet getter(eAppGroup_2);
            Connect(getter);
            OpenAndRead(getter, m_server.Url(), m_page);
            getter.Disconnect(0);
        });
    }

    static double Settled(double milliseconds) {
        std::this_thread::sleep_for(kAfterLaunch);
        return milliseconds;
    }

    const Rounds m_rounds;
    const std::string m_page = Page();
    // A file answers post data, too.
    const BenchServer m_server{{m_page, "error_page 405 =200 $uri;\n", {}}};
    const bool m_hasPeers = PeerProcess::IsAvailable();
    const std::string m_chromium{platform::ChromiumFileName().View()};
};

// The peers show no window and know no proxy for the loopback interface.
void PrepareSurroundings() {
    ::setenv("ZRHTTP_LEGACY_SYSTEM", "1", 1); // each connect starts an application
    ::setenv("ZRHTTP_HEADLESS", "1", 1);
    ::setenv("no_proxy", "127.0.0.1", 0);
    std::signal(SIGPIPE, SIG_IGN);
}

void Run(const Rounds& rounds) {
    PrepareSurroundings();
    Bench bench(rounds);
    std::printf("%zu bytes a page\n", bench.PageSize());
    if (!bench.HasPeers())
        std::printf("Playwright and Puppeteer are missing; bench/peers/setup fetches them.\n");
    bench.OpenPages();
    bench.Post();
    bench.LaunchBrowsers();
}

} // namespace

int main(int argc, char** argv) {
    Rounds rounds{15, 150, 12};
    if (argc == 2 && std::strcmp(argv[1], "--quick") == 0) {
        rounds = {1, 3, 1};
    } else if (argc != 1) {
        std::fputs("usage: browser_bench [--quick]\n", stderr);
        return 2;
    }
    return ExitStatusOf("browser_bench", [&] { Run(rounds); });
}
