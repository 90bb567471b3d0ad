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
std::string OutputOf(const std::vector<std::string>& arguments);
