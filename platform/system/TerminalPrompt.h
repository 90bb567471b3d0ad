// Questions to the user on a terminal.
#pragma once

#include <functional>
#include <ostream>
#include <string>

#include <platform/Prompt.h>

namespace platform {

// The button that changes nothing: No, then Cancel, then OK.
int HarmlessButton(UINT nType);

// The next line that the user types, without its end; false when there will be none.
using LineReader = std::function<bool(std::string&)>;

// Writes the text (control characters made visible, in UTF-8) and the buttons, and reads lines
// until one begins with a button's letter; an empty line takes the harmless button, and so do the
// end of input and a third line without a button.
int AskOnTerminal(const LineReader& readLine, std::ostream& output, const CString& strText,
                  UINT nType);

// Each reads a line in UTF-8, the name under the text. False when the name is empty, the line holds
// a control character, or there is none. Whether what is typed shows is the caller's affair.
bool AskNameOnTerminal(const LineReader& readLine, std::ostream& output, const CString& strText,
                       CString& strName);
bool AskPasswordOnTerminal(const LineReader& readLine, std::ostream& output, CString& strPassword);

} // namespace platform
