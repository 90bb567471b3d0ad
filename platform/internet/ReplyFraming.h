// Where the body of a reply ends, as its head has it (RFC 9112, 6.3).
#pragma once

#include <string>

#include <curl/curl.h>

namespace platform {

inline constexpr const char* kMalformedLength = "the reply's length is not a number";

// What makes the end of the last reply's body unknown, in plain words: lengths that differ, that
// are no number or not below 2^63, or a transfer coding that nobody asked for. Empty when all is
// well. The transfer library takes one of two lengths, and reads to the end without one that is too
// large.
std::string FramingProblem(CURL* easy);

} // namespace platform
