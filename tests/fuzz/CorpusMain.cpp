// Runs a fuzz target over the files of a corpus and over variations of each: cut anywhere, and with
// single bytes changed. libFuzzer's own main takes its place where inputs are searched for.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr int kChangesOfAFile = 300;

std::size_t g_inputs = 0;

void Run(const std::string& input) {
    ++g_inputs;
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

void RunVariations(const std::string& input) {
    for (std::size_t length = 0; length <= input.size(); ++length)
        Run(input.substr(0, length));
    std::minstd_rand random(1); // the same in every run
    for (int change = 0; change < kChangesOfAFile && !input.empty(); ++change) {
        std::string changed = input;
        const std::size_t place = random() % input.size();
        // Bytes of the file itself make other structures, any others make bad characters.
        changed[place] =
            change % 2 ? input[random() % input.size()] : static_cast<char>(random() % 256);
        Run(changed);
    }
}

} // namespace

int main(int argumentCount, char** arguments) {
    for (int index = 1; index < argumentCount; ++index) {
        for (const auto& entry : std::filesystem::directory_iterator(arguments[index])) {
            std::ifstream file(entry.path(), std::ios::binary);
            RunVariations(std::string(std::istreambuf_iterator<char>(file), {}));
        }
    }
    std::printf("%zu inputs\n", g_inputs);
    return g_inputs == 0 ? 1 : 0;
}
