// The subcommands. Each Add function declares one on the application; running it stores the exit
// status, or throws ToolError.
#pragma once

namespace CLI {
class App;
}

namespace zrhttp {

void AddFetchCommand(CLI::App& application, int& exitStatus);
void AddFormCommand(CLI::App& application, int& exitStatus);
void AddHeadersCommand(CLI::App& application, int& exitStatus);
void AddReplyCommand(CLI::App& application, int& exitStatus);
void AddTextCommand(CLI::App& application, int& exitStatus);
// encode, to-utf8 and from-utf8.
void AddEncodingCommands(CLI::App& application, int& exitStatus);
void AddUserAgentCommand(CLI::App& application, int& exitStatus);
void AddDownloadCommand(CLI::App& application, int& exitStatus);
void AddReasonsCommand(CLI::App& application, int& exitStatus);
void AddAutodialCommand(CLI::App& application, int& exitStatus);
void AddDoctorCommand(CLI::App& application, int& exitStatus);
void AddVersionCommand(CLI::App& application, int& exitStatus);

} // namespace zrhttp
