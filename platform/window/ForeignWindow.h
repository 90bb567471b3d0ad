// What stands behind a window of the table that lives elsewhere: on a display.
#pragma once

namespace platform {

// Any thread, and never under the table's lock.
class ForeignWindow {
public:
    virtual ~ForeignWindow() = default;
    // Returns when the window is seen or gone, at the latest after a second. What has become of it
    // is entered in the table by whoever entered the window.
    virtual void Show(bool isVisible) = 0;
    // To the front, with the keyboard.
    virtual void Raise() = 0;
};

} // namespace platform
