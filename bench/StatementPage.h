// A page such as a bank's server sends: the statement of an account.
#pragma once

#include <string>

// Windows-1252, about `size` bytes and at most a few hundred more; the same bytes for the same
// size. Headings, tables, references, umlauts, comments, and scripts and styles also inside the
// body. Its last line tells the closing balance.
std::string StatementPage(std::size_t size);

// The text of that line.
extern const char* const kClosingBalance;
