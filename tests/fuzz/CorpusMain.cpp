// Runs a fuzz target over the files of a directory, each as it is and with changes that are the
// same in every run. Where the target aborts, the input that did it is named.

#include <array>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kMostCuts = 512;    // of one file; the lengths of longer ones are spread
constexpr std::size_t kByteChanges = 512; // of one file
constexpr std::uint32_t kSeed = 20;
// Bytes that mean something to most parsers; every other change takes any byte.
constexpr std::array<std::uint8_t, 16> kTelling{0,   '\n', '\r', ' ', '"', '%', '&',  '+',
                                                '-', ':',  ';',  '<', '=', '>', 0x80, 0xFF};

std::array<char, 1024> inputName{}; // read when the target aborts
std::size_t inputCount = 0;

void NameTheInput(int) {
    std::fprintf(stderr, "aborted on %s\n", inputName.data());
}

// Sized exactly, so that a sanitizer sees a read behind the end.
void Run(const Bytes& input, const std::string& name) {
    std::snprintf(inputName.data(), inputName.size(), "%s", name.c_str());
    LLVMFuzzerTestOneInput(input.data(), input.size());
    ++inputCount;
}

void RunCut(const Bytes& bytes, const std::string& name) {
    const std::size_t step = bytes.size() / kMostCuts + 1;
    for (std::size_t length = 0; length < bytes.size(); length += step)
        Run(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)),
            name + " cut to " + std::to_string(length));
}

void RunWithChangedBytes(Bytes bytes, const std::string& name) {
    if (bytes.empty()) return;
    std::mt19937 random(kSeed);
    for (std::size_t change = 0; change < kByteChanges; ++change) {
        const std::size_t position = random() % bytes.size();
        const auto any = static_cast<std::uint8_t>(random());
        const std::uint8_t before = bytes[position];
        bytes[position] = change % 2 ? kTelling[any % kTelling.size()] : any;
        Run(bytes, name + " with byte " + std::to_string(position) + " set to " +
                       std::to_string(bytes[position]));
        bytes[position] = before;
    }
}

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGABRT, NameTheInput);
    if (argc != 2) return 2;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        const std::string file = entry.path();
        std::ifstream stream(file, std::ios::binary);
        const Bytes bytes{std::istreambuf_iterator<char>(stream), {}};
        Run(bytes, file);
        RunCut(bytes, file);
        RunWithChangedBytes(bytes, file);
    }
    std::printf("%zu inputs\n", inputCount);
    return inputCount == 0 ? 1 : 0;
}
