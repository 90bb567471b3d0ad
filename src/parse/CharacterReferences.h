// Decoding of character references.
#pragma once

#include <cstddef>

// Rewrites the text in place, each reference as its byte, and without any "&"; returns the new
// length.
std::size_t DecodeReferences(char* text, std::size_t length);
