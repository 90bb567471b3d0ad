// Removing tags from a page.
#pragma once

#include <cstddef>

enum class TagBreaks {
    kNone,   // every tag becomes a blank
    kAsLines // "<br>" becomes a line feed, and one follows "</h1>" to "</h3>", in either case
};

// Rewrites the text in place; returns its new length. With kAsLines the result is that of putting
// in the line feeds ahead of removing tags: those inside a tag vanish with it.
std::size_t RemoveTags(char* text, std::size_t length, TagBreaks breaks);
