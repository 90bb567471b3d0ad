// What the tools for texts and bodies cost, each beside something that does the like.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <curl/curl.h>

#include <ZrHbDataTransmit.h>
#include <ZrHbHtmlTools.h>
#include <ZrHbMultipartForm.h>

#include "ChildProcess.h"
#include "Measurement.h"
#include "StatementPage.h"

namespace {

constexpr double kMegabyte = 1e6;
constexpr double kEncodeGoal = 5;
constexpr double kTextGoal = 10;
constexpr double kGrowthGoal = 11;
constexpr double kMemoryGoal = 3;
constexpr const char* kOwnProgram = "/proc/self/exe";

struct Sizes {
    std::size_t encoded; // bytes
    std::size_t smallPage;
    std::size_t largePage;
    std::size_t file;
    int rounds;     // of what takes milliseconds
    int longRounds; // of what takes seconds
    bool hasPeers;
};

constexpr Sizes kFull{1'000'000, 1'000'000, 10'000'000, 100'000'000, 100, 5, true};
constexpr Sizes kQuick{20'000, 10'000, 100'000, 1'000'000, 2, 1, false};

void Check(bool isRight, const std::string& what) {
    if (!isRight) throw std::runtime_error(what);
}

class TemporaryDirectory {
public:
    TemporaryDirectory() { Check(::mkdtemp(m_path.data()) != nullptr, "no temporary directory"); }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::string& Path() const { return m_path; }
    std::string Write(const std::string& name, const std::string& content) const {
        const std::string path = m_path + "/" + name;
        Check(!!(std::ofstream(path, std::ios::binary) << content).flush(), "cannot write " + path);
        return path;
    }

private:
    std::string m_path = std::filesystem::temp_directory_path() / "zrhttp_bench_XXXXXX";
};

// lowest: the smallest byte value.
std::string RandomBytes(std::size_t size, int lowest) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> byte(lowest, 255);
    std::string bytes(size, '\0');
    for (char& c : bytes)
        c = static_cast<char>(byte(random));
    return bytes;
}

double Median(const Measurement& measurement) {
    return measurement.WallQuantile(0.5);
}

void PrintTitle(const std::string& title, const char* lastColumn) {
    std::printf("\n%s\n%-34s %10s %10s %10s\n", title.c_str(), "milliseconds", "median", "p90",
                lastColumn);
}

void PrintRow(const Measurement& measurement, double lastColumn) {
    std::printf("%-34s %10.3f %10.3f %10.2f\n", measurement.Name().c_str(), Median(measurement),
                measurement.WallQuantile(0.9), lastColumn);
}

std::string InMegabytes(std::size_t bytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f MB", static_cast<double>(bytes) / kMegabyte);
    return text;
}

// --- URL encoding -----------------------------------------------------------------------------

void EncodeForUrls(const Sizes& sizes) {
    const CString text(RandomBytes(sizes.encoded, 0));
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(),
                                                                   &curl_easy_cleanup);
    std::vector<Measurement> measurements = {
        {"URLEncodeString",
         [&] { Check(!CZrHbHtmlTools::URLEncodeString(text).IsEmpty(), "nothing encoded"); }},
        {"curl_easy_escape", [&] {
             const std::unique_ptr<char, decltype(&curl_free)> encoded(
                 curl_easy_escape(curl.get(), text.GetString(), text.GetLength()), &curl_free);
             Check(encoded && *encoded, "libcurl encoded nothing");
         }}};
    RunInterleaved(measurements, sizes.rounds);
    PrintTitle("URL encoding, random bytes, " + InMegabytes(sizes.encoded), "speed-up");
    for (const Measurement& measurement : measurements)
        PrintRow(measurement, Median(measurements[1]) / Median(measurement));
    std::printf("goal: a speed-up of at least %.0f\n", kEncodeGoal);
}

// --- Pages to text ----------------------------------------------------------------------------

struct Converter {
    const char* name;
    std::vector<std::string> arguments;
};

std::vector<Converter> Converters(const Sizes& sizes) {
    std::vector<Converter> converters;
    if (!sizes.hasPeers) return converters;
    for (const Converter& converter : {
             Converter{"lynx", {"lynx", "-dump", "-stdin"}},
             Converter{"w3m", {"w3m", "-dump", "-T", "text/html"}},
             Converter{"html2text", {"html2text"}},
         }) {
        if (IsInstalled(converter.name))
            converters.push_back(converter);
        else
            std::printf("%s is missing; bench/peers/setup installs it.\n", converter.name);
    }
    return converters;
}

Measurement Conversion(const std::string& name, const std::string& page, CString& text) {
    return {name, [&text] { CZrHbHtmlTools::HtmlPageMakePureText(text, 0); },
            [&page, &text] { text = CString(page); }};
}

void ConvertBesideOthers(const Sizes& sizes, const std::string& page,
                         const std::vector<Converter>& converters) {
    const TemporaryDirectory directory;
    const std::string file = directory.Write("page.html", page);
    ::setenv("HOME", directory.Path().c_str(), 1); // w3m makes a directory there
    CString text;
    std::vector<Measurement> measurements = {Conversion("HtmlPageMakePureText", page, text)};
    for (const Converter& converter : converters)
        measurements.emplace_back(converter.name, [&] { RunProgram(converter.arguments, file); });
    RunInterleaved(measurements, sizes.longRounds);
    Check(std::string(text.View()).ends_with(std::string(kClosingBalance) + "\n"),
          "the page's text lacks its end");
    PrintTitle("page to text, " + InMegabytes(page.size()), "against us");
    for (const Measurement& measurement : measurements)
        PrintRow(measurement, Median(measurement) / Median(measurements[0]));
}

void CompareGrowth(const Sizes& sizes, const std::string& small, const std::string& large) {
    CString text;
    std::vector<Measurement> measurements = {
        Conversion("HtmlPageMakePureText, small page", small, text),
        Conversion("HtmlPageMakePureText, large page", large, text)};
    RunInterleaved(measurements, sizes.rounds);
    PrintTitle("ten times the page", "growth");
    for (const Measurement& measurement : measurements)
        PrintRow(measurement, Median(measurement) / Median(measurements[0]));
    std::printf("goal: a growth of at most %.0f\n", kGrowthGoal);
}

void ConvertPages(const Sizes& sizes) {
    const std::vector<Converter> converters = Converters(sizes);
    const std::string small = StatementPage(sizes.smallPage);
    const std::string large = StatementPage(sizes.largePage);
    ConvertBesideOthers(sizes, small, converters);
    ConvertBesideOthers(sizes, large, converters);
    std::printf("goal: each of the others takes at least %.0f times as long\n", kTextGoal);
    CompareGrowth(sizes, small, large);
}

// --- Steps of the way from page to text -------------------------------------------------------

void ChangePages(const Sizes& sizes) {
    const std::string page = StatementPage(sizes.largePage);
    std::vector<char> copy(page.size());
    CString text;
    const auto prepare = [&] { text = CString(page); };
    std::vector<Measurement> measurements = {
        {"memcpy", [&] { std::memcpy(copy.data(), page.data(), page.size()); }},
        {"HtmlPageDecode", [&] { CZrHbHtmlTools::HtmlPageDecode(text, 0); }, prepare},
        {"HtmlPageDecode, formatting", [&] { CZrHbHtmlTools::HtmlPageDecode(text, 1); }, prepare},
        {"HtmlPageRemoveSections",
         [&] { CZrHbHtmlTools::HtmlPageRemoveSections(text, "<script", "</script>"); }, prepare},
        {"HtmlPageRemoveTags", [&] { CZrHbHtmlTools::HtmlPageRemoveTags(text); }, prepare}};
    RunInterleaved(measurements, std::max(sizes.rounds / 4, 1));
    PrintTitle("changes of a page, " + InMegabytes(page.size()), "MB/s");
    for (const Measurement& measurement : measurements)
        PrintRow(measurement,
                 static_cast<double>(page.size()) / kMegabyte / Median(measurement) * 1e3);
}

// --- Multipart bodies -------------------------------------------------------------------------

// This process's largest resident memory so far, in bytes; unlike getrusage's it does not begin
// with that of the process which started this one.
double PeakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:")) return std::stod(line.substr(6)) * 1024;
    throw std::runtime_error("the system does not tell the peak memory");
}

std::size_t ComposeBuffer(const CString& path) {
    CByteBuffer body(1024, 256);
    CString error;
    Check(CZrHbMultipartForm::MultipartAttachFromFile_AsByteBuffer(
              "file.bin", path, "file", "Content-Type: application/octet-stream", &body, error) ==
              1,
          error.GetString());
    body.Add(CZrHbMultipartForm::MultipartEnd2());
    return body.GetSize();
}

std::size_t ComposeSet(const CString& path) {
    CZrHbDataTransmit form;
    form.SetBoundary("own_boundary");
    Check(form.SetFile("file", path, CZrHbDataTransmit::eContentType_OctetStream,
                       CZrHbDataTransmit::eDataConfidentialityType_Public) == 1,
          form.GetLastError().GetString());
    return form.GetMultipartData().View().size();
}

// In a process of its own: prints its peak memory.
void ComposeOnce(const std::string& way, const std::string& file) {
    const CString path(file);
    const std::size_t size = way == "buffer" ? ComposeBuffer(path) : ComposeSet(path);
    Check(size > std::filesystem::file_size(file), "the body lacks the file");
    std::printf("%.0f\n", PeakMemory());
}

void ComposeBodies(const Sizes& sizes) {
    const TemporaryDirectory directory;
    const std::string file =
        directory.Write("file", RandomBytes(sizes.file, 1)); // a text ends at NUL
    const std::string copy = directory.Path() + "/copy";
    double memory[2] = {0, 0};
    const auto compose = [&](const char* way, double& peak) {
        const std::string output = OutputOf({kOwnProgram, "--compose", way, file});
        peak = std::max(peak, std::stod(output));
    };
    std::vector<Measurement> measurements = {
        {"MultipartAttach..._AsByteBuffer", [&] { compose("buffer", memory[0]); }},
        {"SetFile and GetMultipartData", [&] { compose("set", memory[1]); }},
        {"cp",
         [&] {
             RunProgram({"cp", file, copy});
         },
         [&] { std::filesystem::remove(copy); }}};
    RunInterleaved(measurements, sizes.longRounds);
    PrintTitle("multipart body, file of " + InMegabytes(sizes.file), "ratio");
    for (const Measurement& measurement : measurements)
        PrintRow(measurement, Median(measurement) / Median(measurements[2]));
    std::printf("peak memory against the file: buffer %.2f, set %.2f; goal: at most %.0f\n",
                memory[0] / static_cast<double>(sizes.file),
                memory[1] / static_cast<double>(sizes.file), kMemoryGoal);
}

void Run(const Sizes& sizes) {
    EncodeForUrls(sizes);
    ConvertPages(sizes);
    ChangePages(sizes);
    ComposeBodies(sizes);
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() == 3 && arguments[0] == "--compose")
        return ExitStatusOf("text_bench", [&] { ComposeOnce(arguments[1], arguments[2]); });
    const bool isQuick = arguments.size() == 1 && arguments[0] == "--quick";
    if (!isQuick && !arguments.empty()) {
        std::fputs("usage: text_bench [--quick]\n", stderr);
        return 2;
    }
    curl_global_init(CURL_GLOBAL_DEFAULT);
    return ExitStatusOf("text_bench", [&] { Run(isQuick ? kQuick : kFull); });
}
