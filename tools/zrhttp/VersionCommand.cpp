#include <memory>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "zrhttp/Commands.h"
#include "zrhttp/ExitStatus.h"
#include "zrhttp/LibraryVersions.h"
#include "zrhttp/Terminal.h"

namespace zrhttp {
namespace {

void PrintVersion(bool asJson) {
    if (!asJson) return WriteOutput("zrhttp " ZRHTTP_VERSION "\n");
    nlohmann::ordered_json json{{"name", "zrhttp"}, {"version", ZRHTTP_VERSION}};
    for (const LibraryVersion& library : LibraryVersions())
        json["libraries"][library.name] = library.version;
    WriteOutput(json.dump() + "\n");
}

} // namespace

void AddVersionCommand(CLI::App& application, int& exitStatus) {
    auto* command = application.add_subcommand("version", "Print the version");
    const auto asJson = std::make_shared<bool>(false);
    command->add_flag("--json", *asJson, "Print a JSON object, with the libraries' versions");
    command->callback([asJson, &exitStatus] {
        PrintVersion(*asJson);
        exitStatus = kSuccess;
    });
}

} // namespace zrhttp
