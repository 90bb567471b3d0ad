// What a display's thread knows of the windows there.
#pragma once

#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "window/display/AppearedWindows.h"
#include "window/display/CommandQueue.h"
#include "window/display/DisplayWindow.h"
#include "window/display/XConnection.h"

namespace platform {

class MessageQueue;

// The display's thread only. A new top-level window is a stranger until it is mapped; one of a
// watched application is then withdrawn and known from there on, one that belongs to a known
// window (a dialog) is known, too, and any other is forgotten. So that a watched application's
// window is never seen, it is held aside from when its class tells whose it is until it is shown.
class DisplayWindows {
public:
    DisplayWindows(XConnection& connection, std::shared_ptr<CommandQueue> commands);

    void Handle(const xcb_generic_event_t& event);
    // Nothing more is heard of the display.
    void Leave(bool isBroken);

    // Commands; those for a window that is gone do nothing.
    void Add(std::shared_ptr<AppearedWindows> watch);
    void Remove(const AppearedWindows& watch);
    // A window manager drops the wish to map a window that was held aside just after the wish: the
    // first one that is held for the watch is mapped in its application's place.
    void MapFirstHeld(const AppearedWindows& watch);
    // Into the window table, as a window of the queue's thread; its dialogs will follow.
    void Enter(xcb_window_t window, std::shared_ptr<MessageQueue> queue);
    void Forget(xcb_window_t window);
    void Show(xcb_window_t window, bool isVisible);
    void Raise(xcb_window_t window);

private:
    struct Stranger {
        std::shared_ptr<AppearedWindows> watch; // null while nobody is known to watch for it
        bool isHeld = false;
    };
    struct Known {
        std::shared_ptr<DisplayWindow> window;
        xcb_window_t owner = XCB_WINDOW_NONE;      // of a dialog
        std::shared_ptr<AppearedWindows> awaiting; // until it is withdrawn
        std::shared_ptr<MessageQueue> queue;       // once it is in the window table
        bool isHeld = false;                       // until it is shown for the first time
        bool mayShow = false; // a new window stays withdrawn until somebody shows it
        bool isMapped = true;
        bool isViewable = false;
        std::uint32_t wmState = 0;
    };

    void OnCreate(const xcb_create_notify_event_t& event);
    void OnMap(xcb_window_t window);
    void OnUnmap(xcb_window_t window);
    void OnDestroy(xcb_window_t window);
    void OnProperty(const xcb_property_notify_event_t& event);
    void OnFocus(const xcb_focus_in_event_t& event, bool isActive);

    void Recognise(xcb_window_t window, Stranger& stranger);
    void Decide(xcb_window_t window, Stranger stranger);
    // Lets go of a window that is held aside.
    template <class TWindow>
    void Free(xcb_window_t id, TWindow& window) {
        if (std::exchange(window.isHeld, false)) m_connection.Release(id);
    }
    void Note(Known& known);
    void NoteTitle(const Known& known);
    void Drop(const Known& known, bool isReported);

    XConnection& m_connection;
    const std::shared_ptr<CommandQueue> m_commands;
    std::vector<std::shared_ptr<AppearedWindows>> m_watches;
    std::map<xcb_window_t, Stranger> m_strangers;
    std::map<xcb_window_t, Known> m_known;
};

} // namespace platform
