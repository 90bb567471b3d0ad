// Marks that a sink is being asked for the window of a pop-up.
#pragma once

namespace platform {

// On the stack; for the calling thread.
class PopUpScope {
public:
    PopUpScope() { ++Depth(); }
    ~PopUpScope() { --Depth(); }
    PopUpScope(const PopUpScope&) = delete;
    PopUpScope& operator=(const PopUpScope&) = delete;

    static bool IsOpen() { return Depth() > 0; }

private:
    static int& Depth() {
        static thread_local int depth = 0;
        return depth;
    }
};

} // namespace platform
