#include <algorithm>
#include <memory>

#include <CLI/CLI.hpp>
#include <ZrHbInet.h>
#include <nlohmann/json.hpp>
#include <platform/CodePage.h>
#include <platform/Secrets.h>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Commands.h"
#include "zrhttp/Download.h"
#include "zrhttp/ExitStatus.h"
#include "zrhttp/FailureLog.h"
#include "zrhttp/Terminal.h"

namespace zrhttp {
namespace {

void PrintJson(const DownloadOptions& options, const DownloadResult& result) {
    const nlohmann::ordered_json json{{"url", platform::MaskSecrets(options.url)},
                                      {"file", options.file},
                                      {"complete", result.end == DownloadEnd::complete},
                                      {"stopped", result.end == DownloadEnd::stopped},
                                      {"length", result.length},
                                      {"elapsed_ms", result.elapsed.count()}};
    WriteOutput(json.dump(-1, ' ', true) + "\n");
}

// A line a reason, as the client shows them to its user.
void PrintReasons() {
    const CString reasons = CZrHbInet::GetReasonForCommunicationError(
        eAppGroup_2, CZrHbInet::eErrorServerResponse_NoResponse);
    std::string_view rest = reasons.View();
    while (!rest.empty()) {
        const std::size_t lineEnd = std::min(rest.find('\n'), rest.size());
        PrintNote(platform::Utf8FromAnsi(rest.substr(0, lineEnd)));
        rest.remove_prefix(std::min(lineEnd + 1, rest.size()));
    }
}

int Report(const DownloadOptions& options, const DownloadResult& result, const FailureLog& log) {
    if (options.json) PrintJson(options, result);
    switch (result.end) {
    case DownloadEnd::complete:
        return kSuccess;
    case DownloadEnd::stopped:
        PrintError("the download was stopped; nothing is kept");
        break;
    case DownloadEnd::failed:
        PrintError("the download failed");
        for (const std::string& line : log.NewLines())
            PrintNote(line);
        PrintReasons();
        PrintNote("More is in " + log.FileName());
        break;
    }
    return kFailure;
}

} // namespace

void AddDownloadCommand(CLI::App& application, int& exitStatus) {
    auto* command = application.add_subcommand("download", "Download a file over HTTP or HTTPS");
    const auto options = std::make_shared<DownloadOptions>();
    command->add_option("URL", options->url, "Where the file is")->required();
    command->add_option("FILE", options->file, "Where it goes, once it is complete")->required();
    command->add_flag("--background", options->background,
                      "Download on the library's worker thread and follow its messages");
    command->add_flag("--json", options->json, "Print a JSON object when it is over");
    command->callback([options, &exitStatus] {
        const FailureLog log;
        exitStatus = Report(*options, Download(*options), log);
    });
}

} // namespace zrhttp
