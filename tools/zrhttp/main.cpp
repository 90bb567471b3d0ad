// zrhttp: the library for people and scripts.
#include <csignal>
#include <exception>

#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include "zrhttp/Commands.h"
#include "zrhttp/Errors.h"
#include "zrhttp/Interrupt.h"
#include "zrhttp/Terminal.h"

namespace {

// A file or socket opened later must not take the number of a standard stream that was closed by
// the caller: messages and pages would go there. Opened the wrong way round, they still fail.
void ReserveStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) < 0)
            static_cast<void>(open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
}

// Only the first one, and no more of it than what looks like a subcommand or the name of an option:
// anything else may be confidential.
std::string UnexpectedArgument(const CLI::App& application) {
    constexpr const char* kLettersOfNames = "abcdefghijklmnopqrstuvwxyz-";
    const std::vector<std::string> unexpected = application.remaining(true);
    const std::string first = unexpected.empty() ? "" : unexpected.front();
    const std::string name = first.substr(0, first.find_first_not_of(kLettersOfNames));
    const bool isCommand = application.get_subcommands().empty() && name == first;
    const bool isOption = name.starts_with("--") && (name == first || first[name.size()] == '=');
    if (isCommand || isOption) return "unexpected argument '" + name + "'";
    if (first.starts_with('-')) return "unexpected argument '" + first.substr(0, 2) + "...'";
    return "unexpected argument behind those that are known; it is not shown, since it may be "
           "confidential";
}

int Run(int argumentCount, char** arguments) {
    CLI::App application(
        "Fetches pages as the e-banking client does, composes what it sends and reads replies.",
        "zrhttp");
    application.require_subcommand(0, 1);
    application.set_version_flag("--version", "zrhttp " ZRHTTP_VERSION);
    application.footer("Exit status: 0 success, 20 to 29 a page that failed (the result code), "
                       "1 other failures, 2 wrong usage. An interrupt ends it by its signal.");
    int exitStatus = zrhttp::kFailure;
    zrhttp::AddFetchCommand(application, exitStatus);
    zrhttp::AddDownloadCommand(application, exitStatus);
    zrhttp::AddFormCommand(application, exitStatus);
    zrhttp::AddHeadersCommand(application, exitStatus);
    zrhttp::AddReplyCommand(application, exitStatus);
    zrhttp::AddTextCommand(application, exitStatus);
    zrhttp::AddEncodingCommands(application, exitStatus);
    zrhttp::AddUserAgentCommand(application, exitStatus);
    zrhttp::AddReasonsCommand(application, exitStatus);
    zrhttp::AddAutodialCommand(application, exitStatus);
    zrhttp::AddDoctorCommand(application, exitStatus);
    zrhttp::AddVersionCommand(application, exitStatus);
    try {
        application.parse(argumentCount, arguments);
        if (application.get_subcommands().empty()) throw zrhttp::UsageError("no subcommand given");
    } catch (const CLI::Success& help) {
        return application.exit(help);
    } catch (const CLI::ExtrasError&) {
        throw zrhttp::UsageError(UnexpectedArgument(application) + "; see zrhttp --help");
    } catch (const CLI::ParseError& error) {
        throw zrhttp::UsageError(std::string(error.what()) + "; see zrhttp --help");
    }
    return exitStatus;
}

int RunOrExplain(int argumentCount, char** arguments) {
    try {
        return Run(argumentCount, arguments);
    } catch (const zrhttp::ToolError& error) {
        zrhttp::PrintError(error.what());
        return error.ExitStatus();
    } catch (const std::exception& error) {
        zrhttp::PrintError(error.what());
        return zrhttp::kFailure;
    }
}

} // namespace

int main(int argumentCount, char** arguments) {
    ReserveStandardStreams();
    // A reader that goes away is a failed write, with a message, not the end of the process.
    std::signal(SIGPIPE, SIG_IGN);
    const int exitStatus = RunOrExplain(argumentCount, arguments);
    zrhttp::Interrupt::EndProcess();
    return exitStatus;
}
