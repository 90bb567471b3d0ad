// The library's own string resources, in German (Switzerland).
#pragma once

#include <span>

#include <platform/Resources.h>

// UTF-8; converted to the ANSI code page when a text is loaded.
std::span<const StringResource> LibraryStrings();
