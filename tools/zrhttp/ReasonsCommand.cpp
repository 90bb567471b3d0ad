#include <memory>

#include <CLI/CLI.hpp>
#include <ZrHbInet.h>
#include <platform/CodePage.h>

#include "zrhttp/Commands.h"
#include "zrhttp/ExitStatus.h"
#include "zrhttp/Results.h"

namespace zrhttp {

void AddReasonsCommand(CLI::App& application, int& exitStatus) {
    auto* command = application.add_subcommand(
        "reasons", "Print, in German, why communication with a server may have failed");
    const auto kind = std::make_shared<int>(0);
    command
        ->add_option("KIND", *kind, "1: the server has not answered; 2: its answer made no sense")
        ->required()
        ->check(CLI::Range(1, 2));
    command->callback([kind, &exitStatus] {
        const CString reasons = CZrHbInet::GetReasonForCommunicationError(
            eAppGroup_2, static_cast<CZrHbInet::EZrHbErrorServerResponse>(*kind));
        HandOutText(platform::Utf8FromAnsi(reasons.View()) + "\n");
        exitStatus = kSuccess;
    });
}

} // namespace zrhttp
