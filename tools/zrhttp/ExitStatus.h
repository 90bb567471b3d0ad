// Exit statuses of the tool. A page that failed exits with its result code (20 to 29).
#pragma once

namespace zrhttp {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr int kWrongUsage = 2;

} // namespace zrhttp
