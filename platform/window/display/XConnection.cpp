#include "window/display/XConnection.h"

#include <string_view>

#include <sys/socket.h>
#include <xcb/xcb_icccm.h>

namespace platform {
namespace {

constexpr std::uint32_t kLongestText = 1024; // in units of four bytes

} // namespace

std::unique_ptr<XConnection> XConnection::Open(const std::string& name) {
    std::unique_ptr<XConnection> opened(new XConnection);
    opened->m_connection.reset(xcb_connect(name.c_str(), &opened->m_screenNumber));
    if (opened->IsBroken() || !opened->Prepare()) return nullptr;
    return opened;
}

bool XConnection::Prepare() {
    xcb_connection_t* const connection = m_connection.get();
    constexpr std::string_view wmState = "WM_STATE";
    const auto asked = xcb_intern_atom(connection, 0, wmState.size(), wmState.data());
    xcb_intern_atom_cookie_t* const names = xcb_ewmh_init_atoms(connection, &m_names);
    const XOwned<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(connection, asked, nullptr));
    if (!names || !xcb_ewmh_init_atoms_replies(&m_names, names, nullptr)) {
        m_names = {}; // wiped already
        return false;
    }
    if (!atom || !FindScreen()) return false;
    m_wmState = atom->atom;
    MakeHolder();
    return true;
}

bool XConnection::FindScreen() {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get()));
    for (int number = 0; screens.rem && number < m_screenNumber; ++number)
        xcb_screen_next(&screens);
    m_screen = screens.rem ? screens.data : nullptr;
    return m_screen != nullptr;
}

void XConnection::MakeHolder() {
    m_holder = xcb_generate_id(m_connection.get());
    const std::uint32_t notForTheWindowManager = 1;
    xcb_create_window(m_connection.get(), XCB_COPY_FROM_PARENT, m_holder, Root(), 0, 0,
                      m_screen->width_in_pixels, m_screen->height_in_pixels, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                      &notForTheWindowManager);
}

void XConnection::Break() {
    ::shutdown(Descriptor(), SHUT_RDWR);
}

void XConnection::Sync() {
    const auto asked = xcb_get_input_focus(m_connection.get());
    const XOwned<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(m_connection.get(), asked, nullptr));
}

XOwned<xcb_generic_event_t> XConnection::NextEvent() {
    XOwned<xcb_generic_event_t> event(xcb_poll_for_event(m_connection.get()));
    if (event) return event;
    xcb_flush(m_connection.get()); // may read while it waits to write
    event.reset(xcb_poll_for_queued_event(m_connection.get()));
    return event;
}

void XConnection::ListenToRoot() {
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection.get(), Root(), XCB_CW_EVENT_MASK, &mask);
}

void XConnection::ListenTo(xcb_window_t window) {
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE |
                               XCB_EVENT_MASK_VISIBILITY_CHANGE | XCB_EVENT_MASK_FOCUS_CHANGE;
    xcb_change_window_attributes(m_connection.get(), window, XCB_CW_EVENT_MASK, &mask);
}

bool XConnection::IsMapped(xcb_window_t window) {
    const auto asked = xcb_get_window_attributes(m_connection.get(), window);
    const XOwned<xcb_get_window_attributes_reply_t> answer(
        xcb_get_window_attributes_reply(m_connection.get(), asked, nullptr));
    return answer && answer->map_state != XCB_MAP_STATE_UNMAPPED;
}

XOwned<xcb_get_property_reply_t> XConnection::Property(xcb_window_t window, xcb_atom_t property) {
    const auto asked = xcb_get_property(m_connection.get(), 0, window, property,
                                        XCB_GET_PROPERTY_TYPE_ANY, 0, kLongestText);
    return XOwned<xcb_get_property_reply_t>(
        xcb_get_property_reply(m_connection.get(), asked, nullptr));
}

std::string XConnection::Text(xcb_window_t window, xcb_atom_t property) {
    const auto answer = Property(window, property);
    if (!answer || answer->format != 8) return {};
    const auto* const text = static_cast<const char*>(xcb_get_property_value(answer.get()));
    const auto length = static_cast<std::size_t>(xcb_get_property_value_length(answer.get()));
    return std::string(text, length);
}

std::string XConnection::InstanceOf(xcb_window_t window) {
    const std::string instanceAndClass = Text(window, XCB_ATOM_WM_CLASS);
    return instanceAndClass.substr(0, instanceAndClass.find('\0'));
}

std::string XConnection::TitleOf(xcb_window_t window) {
    const std::string title = Text(window, m_names._NET_WM_NAME);
    return title.empty() ? Text(window, XCB_ATOM_WM_NAME) : title;
}

xcb_window_t XConnection::OwnerOf(xcb_window_t window) {
    xcb_window_t owner = XCB_WINDOW_NONE;
    const auto asked = xcb_icccm_get_wm_transient_for(m_connection.get(), window);
    xcb_icccm_get_wm_transient_for_reply(m_connection.get(), asked, &owner, nullptr);
    return owner;
}

std::uint32_t XConnection::WmStateOf(xcb_window_t window) {
    const auto answer = Property(window, m_wmState);
    const bool hasState = answer && answer->format == 32 && answer->value_len > 0;
    return hasState ? *static_cast<const std::uint32_t*>(xcb_get_property_value(answer.get()))
                    : std::uint32_t{XCB_ICCCM_WM_STATE_WITHDRAWN};
}

void XConnection::Withdraw(xcb_window_t window) {
    Unmap(window);
    XOwned<char> space(static_cast<char*>(std::calloc(1, 32))); // the size of every event
    auto* const event = reinterpret_cast<xcb_unmap_notify_event_t*>(space.get());
    event->response_type = XCB_UNMAP_NOTIFY;
    event->event = Root();
    event->window = window;
    xcb_send_event(m_connection.get(), 0, Root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   space.get());
}

bool XConnection::Hold(xcb_window_t window) {
    xcb_connection_t* const connection = m_connection.get();
    const auto placeAsked = xcb_get_geometry(connection, window);
    const auto treeAsked = xcb_query_tree(connection, window);
    const XOwned<xcb_get_geometry_reply_t> place(
        xcb_get_geometry_reply(connection, placeAsked, nullptr));
    const XOwned<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(connection, treeAsked, nullptr));
    if (!place || !tree || tree->parent != Root() || IsMapped(window)) return false;
    xcb_reparent_window(connection, window, m_holder, place->x, place->y);
    return true;
}

void XConnection::Release(xcb_window_t window) {
    const auto asked = xcb_get_geometry(m_connection.get(), window);
    const XOwned<xcb_get_geometry_reply_t> place(
        xcb_get_geometry_reply(m_connection.get(), asked, nullptr));
    if (place) xcb_reparent_window(m_connection.get(), window, Root(), place->x, place->y);
}

bool XConnection::HasWindowManager() {
    // The property outlives a window manager that has crashed; the window it names does not.
    const auto checkOf = [this](xcb_window_t window) {
        xcb_window_t check = XCB_WINDOW_NONE;
        const auto asked = xcb_ewmh_get_supporting_wm_check(&m_names, window);
        xcb_ewmh_get_supporting_wm_check_reply(&m_names, asked, &check, nullptr);
        return check;
    };
    const xcb_window_t check = checkOf(Root());
    return check != XCB_WINDOW_NONE && checkOf(check) == check;
}

void XConnection::Activate(xcb_window_t window) {
    if (HasWindowManager()) {
        xcb_ewmh_request_change_active_window(&m_names, m_screenNumber, window,
                                              XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER, XCB_CURRENT_TIME,
                                              XCB_WINDOW_NONE);
        return;
    }
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection.get(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_set_input_focus(m_connection.get(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
}

} // namespace platform
