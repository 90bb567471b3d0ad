#include "zrhttp/Results.h"

#include <CLI/CLI.hpp>

#include "zrhttp/Errors.h"
#include "zrhttp/OutputFile.h"
#include "zrhttp/Terminal.h"
#include "zrhttp/TerminalEncoding.h"

namespace zrhttp {
namespace {

bool IsFile(const std::optional<std::string>& output) {
    return output && *output != "-";
}

void WriteFile(const std::string& path, std::string_view bytes) {
    OutputFile file(path);
    file.Write(bytes);
    file.Commit();
}

} // namespace

void AddOutputOption(CLI::App& command, std::optional<std::string>& output) {
    command
        .add_option("--output", output,
                    "Write the result to a file; - is standard output, the default")
        ->type_name("FILE");
}

void CheckDestination(const std::optional<std::string>& output) {
    if (output && output->empty()) throw UsageError("--output: is empty");
    if (IsFile(output)) OutputFile::CheckWritable(*output);
}

void HandOutBytes(std::string_view bytes, const std::optional<std::string>& output) {
    if (IsFile(output))
        WriteFile(*output, bytes);
    else
        WritePage(bytes);
}

void HandOutText(std::string_view utf8, const std::optional<std::string>& output) {
    if (IsFile(output))
        WriteFile(*output, TerminalFromUtf8(utf8));
    else
        WriteText(utf8);
}

} // namespace zrhttp
