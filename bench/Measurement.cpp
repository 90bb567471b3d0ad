#include "Measurement.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <exception>

namespace {

double Milliseconds(clockid_t clock) {
    timespec now{};
    ::clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

} // namespace

double Quantile(std::vector<double> samples, double fraction) {
    std::sort(samples.begin(), samples.end());
    return samples[static_cast<std::size_t>(fraction * static_cast<double>(samples.size() - 1))];
}

void Measurement::Sample() {
    if (m_prepare) m_prepare();
    const double wall = Milliseconds(CLOCK_MONOTONIC);
    const double processor = Milliseconds(CLOCK_PROCESS_CPUTIME_ID);
    m_run();
    m_processor += Milliseconds(CLOCK_PROCESS_CPUTIME_ID) - processor;
    m_wall.push_back(Milliseconds(CLOCK_MONOTONIC) - wall);
}

double Measurement::WallQuantile(double fraction) const {
    return Quantile(m_wall, fraction);
}

double Measurement::ProcessorMean() const {
    return m_processor / static_cast<double>(m_wall.size());
}

void RunInterleaved(std::vector<Measurement>& measurements, int rounds) {
    const std::size_t count = measurements.size();
    for (std::size_t round = 0; round < static_cast<std::size_t>(rounds); ++round)
        for (std::size_t i = 0; i < count; ++i)
            measurements[(round + i) % count].Sample();
}

int ExitStatusOf(const char* bench, const std::function<void()>& run) {
    try {
        run();
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s: %s\n", bench, failure.what());
        return 1;
    }
}
