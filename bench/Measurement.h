// Wall and processor time of one way to do a thing, one sample a run.
#pragma once

#include <functional>
#include <string>
#include <vector>

// The sample that the fraction (0 to 1) of all samples does not exceed; 0.5 is the median.
double Quantile(std::vector<double> samples, double fraction);

class Measurement {
public:
    // prepare: what happens before each run, outside its time.
    Measurement(std::string name, std::function<void()> run, std::function<void()> prepare = {})
        : m_name(std::move(name)), m_run(std::move(run)), m_prepare(std::move(prepare)) {}

    void Sample();
    const std::string& Name() const { return m_name; }
    // Milliseconds; fraction 0.5 is the median.
    double WallQuantile(double fraction) const;
    // Milliseconds of processor time of all threads, on average.
    double ProcessorMean() const;

private:
    std::string m_name;
    std::function<void()> m_run;
    std::function<void()> m_prepare;
    std::vector<double> m_wall;
    double m_processor = 0;
};

// Samples all of them in turn, each round beginning with another one, so that none always runs
// behind the same neighbour.
void RunInterleaved(std::vector<Measurement>& measurements, int rounds);

// Runs a whole bench. The exit status: 0, or 1 after a failure, which it prints.
int ExitStatusOf(const char* bench, const std::function<void()>& run);
