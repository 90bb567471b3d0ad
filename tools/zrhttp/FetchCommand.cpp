#include <memory>

#include <CLI/CLI.hpp>

#include "zrhttp/Commands.h"
#include "zrhttp/Errors.h"
#include "zrhttp/FetchOptions.h"
#include "zrhttp/FetchReport.h"
#include "zrhttp/FetchRequest.h"
#include "zrhttp/Milliseconds.h"
#include "zrhttp/OutputFile.h"
#include "zrhttp/PageFetch.h"

namespace zrhttp {
namespace {

void DeclareRequest(CLI::App& command, FetchOptions& options) {
    command
        .add_option("URL", options.url,
                    "The page to load; with --via application, SIM: "
                    "before it asks for a simulated answer, SAVE: for "
                    "a recording")
        ->required();
    command
        .add_option("--via", options.via,
                    "Where the browser lives: control (in this program), hidden (the same in a "
                    "window that never shows), application (a browser of its own)")
        ->type_name("NAME")
        ->check(CLI::IsMember({"control", "hidden", "application"}))
        ->capture_default_str();
    command
        .add_option("--engine", options.engine,
                    "Which browser: builtin (no scripts) or chromium; default: the setting "
                    "ZRHTTP_CONTROL or, for an application, ZRHTTP_APPLICATION")
        ->type_name("NAME")
        ->check(CLI::IsMember({"builtin", "chromium"}));
    auto* post = command.add_option("--post", options.post,
                                    "Send a POST request with TEXT, in code page 1252");
    command
        .add_option("--post-file", options.postFile,
                    "Send a POST request with a file's exact bytes; - is standard input")
        ->type_name("FILE")
        ->excludes(post);
    command
        .add_option("--header", options.headers,
                    "A header line \"Name: value\" of the POST request; may be repeated")
        ->allow_extra_args(false);
    command.add_option("--content-type", options.contentType,
                       "Show a reply of this MIME type as a page too");
}

void DeclareWaiting(CLI::App& command, FetchOptions& options) {
    TakesMilliseconds(
        *command.add_option("--timeout", options.timeout,
                            "Milliseconds without progress before the page fails; 0: none"));
    command.add_flag("--large-data", options.largeData,
                     "Lengthen --timeout by the time that the posted data needs");
    TakesMilliseconds(*command.add_option("--idle-timeout", options.idleTimeout,
                                          "Milliseconds that the browser may be idle; 0: none"));
    command.add_flag("--visible", options.visible, "Show the browser's window");
    command
        .add_option("--title", options.titles,
                    "Bring a window with this title to the front; may be repeated")
        ->allow_extra_args(false);
}

void DeclareResult(CLI::App& command, FetchOptions& options) {
    auto* output = command.add_option(
        "--output", options.output, "Write the page's exact bytes to a file; - is standard output");
    command.add_flag("--fail", options.fail,
                     "Fail, and write no page, when the server answers with a status of 400 or "
                     "above");
    auto* save =
        command.add_option("--save", options.save, "Save the page as text with CR LF line ends");
    auto* collect = command.add_flag("--collect", options.collect,
                                     "Print every page that completes, frames first; from an "
                                     "application until --idle-timeout is over");
    auto* text = command.add_flag("--text", options.text,
                                  "Reduce the page to its readable text, in the terminal's "
                                  "encoding");
    command.add_flag("--json", options.json, "Print a JSON object instead of the page");
    output->type_name("FILE");
    save->type_name("FILE")->excludes(output)->excludes(collect)->excludes(text);
    collect->excludes(output);
}

void CheckTraffic(const FetchOptions& options) {
    const Traffic traffic = TrafficOf(options.url);
    if (!traffic.isSimulated && !traffic.isRecorded) return;
    if (options.via != "application")
        throw UsageError("URL: the prefixes SIM: and SAVE: need --via application");
    if (traffic.isRecorded && options.collect)
        throw UsageError("--collect: collected pages are not recorded, remove SAVE: or --collect");
}

void CheckCombination(const FetchOptions& options) {
    if (options.via == "hidden" && (options.visible || options.collect))
        throw UsageError(std::string(options.visible ? "--visible" : "--collect") +
                         ": not possible with --via hidden");
    CheckTraffic(options);
    if (options.collect && options.via == "application" && options.idleTimeout == 0)
        throw UsageError("--collect: needs an --idle-timeout to end with --via application");
    if (!options.headers.empty() && !options.post && !options.postFile)
        throw UsageError("--header: sent with --post or --post-file only");
    if (options.json && options.output == "-")
        throw UsageError("--json: takes standard output for itself, --output must be a file");
    if (options.output && options.output->empty()) throw UsageError("--output: is empty");
}

// A page whose file cannot be written fails before anything is sent.
void CheckFiles(const FetchOptions& options) {
    if (options.output && *options.output != "-") OutputFile::CheckWritable(*options.output);
    if (options.save) WriteSaveFile(*options.save, std::nullopt);
}

int RunFetch(const FetchOptions& options) {
    CheckCombination(options);
    const FetchRequest request = MakeFetchRequest(options);
    CheckFiles(options);
    return ReportFetch(options, FetchPage(options, request));
}

} // namespace

void AddFetchCommand(CLI::App& application, int& exitStatus) {
    auto* command = application.add_subcommand("fetch", "Load a page and print its source");
    const auto options = std::make_shared<FetchOptions>();
    DeclareRequest(*command, *options);
    DeclareWaiting(*command, *options);
    DeclareResult(*command, *options);
    command->callback([options, &exitStatus] { exitStatus = RunFetch(*options); });
}

} // namespace zrhttp
