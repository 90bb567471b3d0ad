// The subcommands. Each Add function declares one on the application; running it stores the exit
// status, or throws ToolError.
#pragma once

namespace CLI {
class App;
}

namespace zrhttp {

void AddFetchCommand(CLI::App& application, int& exitStatus);
void AddDoctorCommand(CLI::App& application, int& exitStatus);
void AddVersionCommand(CLI::App& application, int& exitStatus);

} // namespace zrhttp
