// What is asked of an X server here, over one connection.
#pragma once

#include <cstdlib>
#include <memory>
#include <string>

#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

namespace platform {

struct XFree {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using XOwned = std::unique_ptr<T, XFree>;

// For one thread, with SIGPIPE blocked; Break() is for any. A window that is gone, like a broken
// connection, answers every question with nothing.
class XConnection {
public:
    // Null when the display does not answer.
    static std::unique_ptr<XConnection> Open(const std::string& name);
    ~XConnection() { xcb_ewmh_connection_wipe(&m_names); }
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    int Descriptor() const { return xcb_get_file_descriptor(m_connection.get()); }
    bool IsBroken() const { return xcb_connection_has_error(m_connection.get()) != 0; }
    // Ends the conversation; a thread that waits for the server goes on.
    void Break();

    // Returns when the server has done all that was asked of it.
    void Sync();
    // Null when none waits; what was asked for before is on its way then.
    XOwned<xcb_generic_event_t> NextEvent();

    xcb_window_t Root() const { return m_screen->root; }
    xcb_atom_t WmState() const { return m_wmState; }
    xcb_atom_t NetWmName() const { return m_names._NET_WM_NAME; }

    // Events about all top-level windows.
    void ListenToRoot();
    // Events about one window: its properties, state, keyboard focus and whether it can be seen.
    void ListenTo(xcb_window_t window);

    bool IsMapped(xcb_window_t window);
    std::string InstanceOf(xcb_window_t window);
    xcb_window_t OwnerOf(xcb_window_t window); // WM_TRANSIENT_FOR
    std::string TitleOf(xcb_window_t window);  // UTF-8
    // As the window manager has it: 0 withdrawn (or nobody manages it), 1 normal, 3 iconic.
    std::uint32_t WmStateOf(xcb_window_t window);

    void Map(xcb_window_t window) { xcb_map_window(m_connection.get(), window); }
    void Unmap(xcb_window_t window) { xcb_unmap_window(m_connection.get(), window); }
    // Unmaps it and tells the window manager to let go of it.
    void Withdraw(xcb_window_t window);
    // Puts a window where its being mapped shows nothing and no window manager hears of it. False,
    // with nothing done, when it is too late: it is mapped, or a window manager has it.
    bool Hold(xcb_window_t window);
    // Makes a held window a top-level one again; a mapped one shows from then on.
    void Release(xcb_window_t window);
    // In front of the others, with the keyboard.
    void Activate(xcb_window_t window);

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    XConnection() = default;
    bool Prepare();
    bool FindScreen();
    void MakeHolder();
    std::string Text(xcb_window_t window, xcb_atom_t property);
    XOwned<xcb_get_property_reply_t> Property(xcb_window_t window, xcb_atom_t property);
    bool HasWindowManager();

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_screen_t* m_screen = nullptr;
    int m_screenNumber = 0;
    xcb_ewmh_connection_t m_names{};
    xcb_atom_t m_wmState = XCB_ATOM_NONE;
    xcb_window_t m_holder = XCB_WINDOW_NONE; // never mapped
};

} // namespace platform
