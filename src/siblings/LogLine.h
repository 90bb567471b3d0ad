// One record of the client's log as a line of text.
//
//   line = time TAB "group " N TAB level TAB source ":" line TAB text LF
//
// Time is UTC ("2010-11-05T14:20:33Z"), level "error" or "trace", source the file's name without
// its directories. The line is UTF-8.
#pragma once

#include <string>
#include <string_view>

#include <ZrAbAppGroup.h>

struct LogRecord {
    EZrAbAppGroup group;
    bool isError;
    std::string_view sourceFile;
    unsigned long sourceLine;
    std::string_view text; // ANSI code page
};

// Secrets are masked, and no text can begin a record of its own: line breaks and control characters
// are escaped. A text longer than 64 KiB is cut.
std::string FormatLogLine(const LogRecord& record);

// "\n", "\r", "\t" and "\xNN" for control characters (C0, DEL, and the bytes without a character).
std::string EscapeControls(std::string_view text);
