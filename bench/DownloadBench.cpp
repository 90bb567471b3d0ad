// Downloads through the engine beside curl and wget: a large file, then many small ones, each way
// in a process of its own.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <ZrHbInet.h>

#include "BenchServer.h"
#include "ChildProcess.h"
#include "Measurement.h"

namespace {

constexpr const char* kOwnProgram = "/proc/self/exe";
constexpr std::size_t kMiB = 1024 * 1024;
constexpr std::size_t kSmallFile = 4000; // bytes

struct Sizes {
    std::size_t blocks; // of 1 MiB, of the large file
    int rounds;
    int files;
};

struct Way {
    const char* name;
    std::function<ProgramUse()> run;
    std::vector<double> wall{};
    std::vector<double> processor{};
    std::vector<double> peak{};
};

// What the child processes do: each file through an engine of its own, as the client does.
void DownloadAll(const std::string& url, const std::string& file, int count) {
    for (int i = 0; i < count; ++i)
        if (!CZrHbInet().DownloadFile(url.c_str(), file.c_str()))
            throw std::runtime_error("the download has failed");
}

void WriteLargeFile(const std::string& name, std::size_t blocks) {
    std::ofstream file(name, std::ios::binary);
    std::vector<char> block(kMiB, 'x');
    for (std::size_t index = 0; index < blocks; ++index) {
        std::memcpy(block.data(), &index, sizeof index);
        file.write(block.data(), static_cast<std::streamsize>(block.size()));
    }
    if (!file.flush()) throw std::runtime_error("cannot write " + name);
}

std::string DigestOf(const std::string& file) {
    return OutputOf({"sha256sum", file}).substr(0, 64);
}

// Each way once a round, in turns; `target` is removed before and must equal `source` behind it.
void Measure(std::vector<Way>& ways, const std::string& source, const std::string& target,
             int rounds) {
    const std::string expected = DigestOf(source);
    for (std::size_t round = 0; round < static_cast<std::size_t>(rounds); ++round)
        for (std::size_t i = 0; i < ways.size(); ++i) {
            Way& way = ways[(round + i) % ways.size()];
            std::filesystem::remove(target);
            const ProgramUse use = way.run();
            if (DigestOf(target) != expected)
                throw std::runtime_error(std::string(way.name) + ": another file");
            way.wall.push_back(use.wallMs);
            way.processor.push_back(use.processorMs);
            way.peak.push_back(static_cast<double>(use.peakKiB) / 1024);
        }
}

void Print(const std::string& title, const std::vector<Way>& ways, const Way& peer) {
    std::printf("\n%s\n%-24s %9s %9s %9s %9s %9s\n", title.c_str(), "", "wall ms", "ratio",
                "cpu ms", "ratio", "peak MiB");
    for (const Way& way : ways) {
        const double wall = Quantile(way.wall, 0.5);
        const double processor = Quantile(way.processor, 0.5);
        std::printf("%-24s %9.1f %9.2f %9.1f %9.2f %9.1f\n", way.name, wall,
                    wall / Quantile(peer.wall, 0.5), processor,
                    processor / Quantile(peer.processor, 0.5), Quantile(way.peak, 1));
    }
}

std::function<ProgramUse()> Program(std::vector<std::string> arguments) {
    return [arguments = std::move(arguments)] { return RunMeasured(arguments); };
}

// wget is measured where it is installed.
void AddWget(std::vector<Way>& ways, std::vector<std::string> arguments) {
    if (!IsInstalled("wget")) return;
    arguments.insert(arguments.begin(), {"wget", "--quiet", "--no-config", "--no-proxy"});
    ways.push_back({"wget", Program(std::move(arguments))});
}

void DownloadLargeFile(const BenchServer& server, const std::string& target, const Sizes& sizes) {
    const std::string source = server.File("/large");
    WriteLargeFile(source, sizes.blocks);
    const std::string url = server.Url("/large");
    std::vector<Way> ways = {
        {"DownloadFile", Program({kOwnProgram, "--download", url, target, "1"})},
        {"curl", Program({"curl", "--disable", "--silent", "--output", target, url})}};
    AddWget(ways, {"--output-document=" + target, url});
    Measure(ways, source, target, sizes.rounds);
    Print(std::to_string(sizes.blocks) + " MiB", ways, ways[1]);
    std::filesystem::remove(source);
}

void DownloadSmallFiles(const BenchServer& server, const std::string& directory,
                        const Sizes& sizes) {
    const std::string target = directory + "/small";
    std::vector<std::string> oneByOne{"curl", "--disable", "--silent"};
    for (int i = 0; i < sizes.files; ++i)
        oneByOne.insert(oneByOne.end(), {"--output", target, server.Url()});
    std::vector<Way> ways = {{"DownloadFile", Program({kOwnProgram, "--download", server.Url(),
                                                       target, std::to_string(sizes.files)})},
                             {"curl, one connection", Program(oneByOne)}};
    oneByOne.insert(oneByOne.begin() + 1, {"--header", "Connection: close"});
    ways.push_back({"curl, a connection each", Program(oneByOne)});
    Measure(ways, server.File("/page"), target, sizes.rounds);
    Print(std::to_string(sizes.files) + " files of " + std::to_string(kSmallFile) + " bytes", ways,
          ways[1]);
}

void Run(const Sizes& sizes) {
    const BenchServer server(std::string(kSmallFile, 'x'));
    const std::string directory = server.File("/..");
    ::setenv("no_proxy", "127.0.0.1", 1);
    ::setenv("ZRHTTP_HOME", (directory + "/home").c_str(), 1);
    DownloadLargeFile(server, directory + "/target", sizes);
    DownloadSmallFiles(server, directory, sizes);
    std::printf("\ngoals beside curl for the large file: wall at most 1.0, processor time at most "
                "1.5, peak at most 8 MiB more\n");
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() == 4 && arguments[0] == "--download")
        return ExitStatusOf("download_bench", [&] {
            DownloadAll(arguments[1], arguments[2], std::stoi(arguments[3]));
        });
    const bool isQuick = arguments.size() == 1 && arguments[0] == "--quick";
    if (!arguments.empty() && !isQuick) {
        std::fputs("usage: download_bench [--quick]\n", stderr);
        return 2;
    }
    return ExitStatusOf("download_bench", [&] {
        Run(isQuick ? Sizes{16, 1, 20} : Sizes{1024, 7, 1000});
    });
}
