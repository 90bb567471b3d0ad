// Arguments that are milliseconds.
#pragma once

namespace CLI {
class Option;
}

namespace zrhttp {

// A whole number that fits 32 bits; otherwise "-1" would become a time-out of 49 days.
void TakesMilliseconds(CLI::Option& option);

} // namespace zrhttp
