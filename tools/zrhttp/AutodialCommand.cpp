#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <ZrHbAutoDial.h>

#include "zrhttp/Commands.h"
#include "zrhttp/Errors.h"
#include "zrhttp/ExitStatus.h"
#include "zrhttp/Terminal.h"

namespace zrhttp {
namespace {

void ShowOrSet(const std::string& wanted) {
    const int before = wanted.empty() ? CZrHbAutoDial::Get_EnableAutodial()
                                      : CZrHbAutoDial::Set_EnableAutodial(wanted == "on" ? 1 : 0);
    if (before < 0)
        throw SystemError("the automatic dial-up setting is not there (registry value "
                          "EnableAutodial of the Internet settings); nothing was changed");
    const int now = CZrHbAutoDial::Get_EnableAutodial();
    if (!wanted.empty() && (now == 1) != (wanted == "on"))
        throw SystemError("the automatic dial-up setting could not be written");
    WriteOutput(now == 1 ? "on\n" : "off\n");
}

} // namespace

void AddAutodialCommand(CLI::App& application, int& exitStatus) {
    auto* command = application.add_subcommand(
        "autodial", "Show or switch the system's automatic dial-up setting");
    const auto wanted = std::make_shared<std::string>();
    command->add_option("STATE", *wanted, "on or off; without it the setting is shown")
        ->check(CLI::IsMember({"on", "off"}));
    command->callback([wanted, &exitStatus] {
        ShowOrSet(*wanted);
        exitStatus = kSuccess;
    });
}

} // namespace zrhttp
