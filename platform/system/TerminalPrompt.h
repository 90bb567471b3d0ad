// Questions to the user on a terminal.
#pragma once

#include <istream>
#include <ostream>

#include <platform/Prompt.h>

namespace platform {

// The button that changes nothing: No, then Cancel, then OK.
int HarmlessButton(UINT nType);

// Writes the text (control characters made visible, in UTF-8) and the buttons, and reads lines
// until one begins with a button's letter; an empty line takes the harmless button, and so do the
// end of input and a third line without a button.
int AskOnTerminal(std::istream& input, std::ostream& output, const CString& strText, UINT nType);

// Each reads a line in UTF-8, the name under the text. False when the name is empty, the line holds
// a control character, or the input ends. Whether what is typed shows is the caller's affair.
bool AskNameOnTerminal(std::istream& input, std::ostream& output, const CString& strText,
                       CString& strName);
bool AskPasswordOnTerminal(std::istream& input, std::ostream& output, CString& strPassword);

} // namespace platform
