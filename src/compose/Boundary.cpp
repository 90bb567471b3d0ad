#include "compose/Boundary.h"

#include <cstdint>
#include <mutex>
#include <random>

#include <platform/Clock.h>

namespace {

constexpr std::size_t kLength = 21;
constexpr DWORD kPause = 1000;            // ms
constexpr std::uint32_t kSeedBetween = 1; // while no boundary is being made

class RandomBoundaries : public BoundarySource {
public:
    std::string Draw(unsigned nAttempt) override {
        auto seed = static_cast<std::uint32_t>(platform::Current<platform::Clock>().Now());
        if (nAttempt > 0) seed ^= std::random_device()();
        std::string boundary = DrawFrom(seed);
        Sleep(kPause);
        const std::lock_guard guard(m_lock);
        m_engine.seed(kSeedBetween);
        return boundary;
    }

private:
    std::string DrawFrom(std::uint32_t seed) {
        const std::lock_guard guard(m_lock);
        m_engine.seed(seed);
        std::string boundary;
        while (boundary.size() < kLength) {
            const char ch = NextCharacter();
            const bool isBetweenRanges = (ch > '9' && ch < 'A') || (ch > 'Z' && ch < 'a');
            if (!isBetweenRanges) boundary += ch;
        }
        return boundary;
    }
    // From "0" to "z".
    char NextCharacter() {
        constexpr std::uint32_t kCharacters = 'z' - '0' + 1;
        const std::uint32_t number = NextNumber();
        return static_cast<char>('0' + number * kCharacters / 32768);
    }
    // From 0 to 32767.
    std::uint32_t NextNumber() { return static_cast<std::uint32_t>(m_engine()) >> 17; }

    std::mutex m_lock;
    std::mt19937 m_engine{kSeedBetween};
};

} // namespace

BoundarySource& BoundarySource::Real() {
    static RandomBoundaries boundaries;
    return boundaries;
}
