#include <CLI/CLI.hpp>
#include <ZrHbHttpHeaders.h>

#include "zrhttp/Commands.h"
#include "zrhttp/ExitStatus.h"
#include "zrhttp/Results.h"

namespace zrhttp {

void AddUserAgentCommand(CLI::App& application, int& exitStatus) {
    auto* command =
        application.add_subcommand("user-agent", "Print the client's User-Agent header value");
    command->callback([&exitStatus] {
        const CString value = CZrHbHttpHeaders::GetVeltrumUserAgentValue();
        HandOutBytes((value + "\n").View());
        exitStatus = kSuccess;
    });
}

} // namespace zrhttp
