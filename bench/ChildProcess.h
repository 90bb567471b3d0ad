// Programs that a bench runs to their end.
#pragma once

#include <string>
#include <vector>

// Whether PATH knows the program.
bool IsInstalled(const std::string& program);

// Runs a program with a file as its standard input ("" for none) and waits for its end. What it
// prints is returned, or goes to /dev/null. These throw std::runtime_error when the program cannot
// be started or fails.
void RunProgram(const std::vector<std::string>& arguments, const std::string& inputFile = "");
struct ProgramUse {
    double wallMs;
    double processorMs;
    long peakKiB; // resident; not below this process's own when it started the program
};
// The same for a program without input, and what it has used.
ProgramUse RunMeasured(const std::vector<std::string>& arguments);
std::string OutputOf(const std::vector<std::string>& arguments);
