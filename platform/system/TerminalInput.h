// What the user types on the terminal that is this process's standard input.
#pragma once

#include <functional>
#include <string>

#include <termios.h>

namespace platform {

// Waits for a line and reads it, without its end. False at the end of the input, or once
// `isWithdrawn` says true, which is asked ten times a second; what has been typed by then is gone.
bool ReadTerminalLine(std::string& line, const std::function<bool()>& isWithdrawn);

// While it lives, the terminal shows nothing of what is typed, and the keys that would end the
// program, and leave the terminal so, are characters. The interrupt key ends the line; what it
// means to the program happens when the terminal is as it was.
class HiddenTyping {
public:
    HiddenTyping();
    ~HiddenTyping();
    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;

    // Whether the line was ended by the interrupt key.
    bool TakeInterrupt(const std::string& line);

private:
    termios m_before{};
    bool m_isSet = false;
    bool m_isInterrupted = false;
};

} // namespace platform
