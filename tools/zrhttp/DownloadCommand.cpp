#include <algorithm>
#include <memory>

#include <CLI/CLI.hpp>
#include <ZrHbInet.h>
#include <nlohmann/json.hpp>
#include <platform/CodePage.h>
#include <platform/Secrets.h>
#include <platform/UserPaths.h>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Commands.h"
#include "zrhttp/Download.h"
#include "zrhttp/ExitStatus.h"
#include "zrhttp/Milliseconds.h"
#include "zrhttp/Terminal.h"

namespace zrhttp {
namespace {

void PrintJson(const DownloadOptions& options, const DownloadResult& result) {
    nlohmann::ordered_json json{{"url", platform::MaskSecrets(options.url)},
                                {"file", options.file},
                                {"complete", result.end == DownloadEnd::complete},
                                {"stopped", result.end == DownloadEnd::stopped},
                                {"http_status", nullptr},
                                {"error", result.failure.reason},
                                {"length", result.length},
                                {"elapsed_ms", result.elapsed.count()}};
    if (result.httpStatus) json["http_status"] = *result.httpStatus;
    // A file's name may be any bytes.
    WriteOutput(json.dump(-1, ' ', true, nlohmann::json::error_handler_t::replace) + "\n");
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

void PrintFailure(const DownloadFailure& failure) {
    PrintError("the download failed" + (failure.cause.empty() ? "" : ": " + failure.cause));
    if (failure.isErrorPage) return;
    for (const std::string& line : failure.records)
        PrintNote(line);
    if (failure.isConnection) PrintReasons();
    if (failure.areRecordsInLog)
        PrintNote("More is in " + std::string(platform::LogDirectory().View()) +
                  "/zrhttpbase3.log");
}

int Report(const DownloadOptions& options, const DownloadResult& result) {
    if (options.json) PrintJson(options, result);
    if (result.end == DownloadEnd::complete) return kSuccess;
    if (result.end == DownloadEnd::stopped)
        PrintError("the download was stopped; nothing is kept");
    else
        PrintFailure(result.failure);
    return kFailure;
}

} // namespace

void AddDownloadCommand(CLI::App& application, int& exitStatus) {
    auto* command = application.add_subcommand("download", "Download a file over HTTP or HTTPS");
    const auto options = std::make_shared<DownloadOptions>();
    command->add_option("URL", options->url, "Where the file is")->required();
    command->add_option("FILE", options->file, "Where it goes, once it is complete")->required();
    TakesMilliseconds(*command->add_option(
        "--timeout", options->timeout, "Milliseconds without progress before it fails; 0: none"));
    command->add_flag("--keep-error-page", options->keepErrorPage,
                      "Take what a server sends with a status of 400 or above for the file too; "
                      "else the download fails");
    command->add_flag("--background", options->background,
                      "Download on the library's worker thread and follow its messages");
    command->add_flag("--json", options->json, "Print a JSON object when it is over");
    command->callback(
        [options, &exitStatus] { exitStatus = Report(*options, Download(*options)); });
}

} // namespace zrhttp
