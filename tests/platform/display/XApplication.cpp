#include "XApplication.h"

#include <cstdlib>

#include <xcb/xcb_icccm.h>

namespace display_test {

XApplication::XApplication(const std::string& display)
    : m_connection(xcb_connect(display.c_str(), nullptr)),
      m_screen(xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data) {
    auto* const asked = xcb_ewmh_init_atoms(m_connection.get(), &m_names);
    xcb_ewmh_init_atoms_replies(&m_names, asked, nullptr);
}

XApplication::~XApplication() {
    xcb_ewmh_connection_wipe(&m_names);
}

void XApplication::Sync() {
    std::free(xcb_get_input_focus_reply(m_connection.get(), xcb_get_input_focus(m_connection.get()),
                                        nullptr));
}

xcb_window_t XApplication::Create(const std::string& instance, const std::string& title) {
    const xcb_window_t window = xcb_generate_id(m_connection.get());
    const std::uint32_t values[] = {0xC00000, XCB_EVENT_MASK_VISIBILITY_CHANGE};
    xcb_create_window(m_connection.get(), XCB_COPY_FROM_PARENT, window, m_screen->root, 20, 30, 300,
                      200, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
    const std::string both = instance + '\0' + "Application" + '\0';
    xcb_icccm_set_wm_class(m_connection.get(), window, static_cast<std::uint32_t>(both.size()),
                           both.data());
    xcb_ewmh_set_wm_name(&m_names, window, static_cast<std::uint32_t>(title.size()), title.data());
    return window;
}

xcb_window_t XApplication::Make(const std::string& instance, const std::string& title) {
    const xcb_window_t window = Create(instance, title);
    Sync();
    return window;
}

xcb_window_t XApplication::MakeDialogOf(xcb_window_t owner, const std::string& title) {
    const xcb_window_t window = Create("dialog", title);
    xcb_icccm_set_wm_transient_for(m_connection.get(), window, owner);
    Sync();
    return window;
}

xcb_window_t XApplication::MakeMapped(const std::string& instance) {
    const xcb_window_t window = Create(instance, "at once");
    Map(window);
    return window;
}

void XApplication::Map(xcb_window_t window) {
    xcb_map_window(m_connection.get(), window);
    Sync();
}

void XApplication::Unmap(xcb_window_t window) {
    xcb_unmap_window(m_connection.get(), window);
    Sync();
}

void XApplication::Iconify(xcb_window_t window) {
    const xcb_intern_atom_cookie_t asked =
        xcb_intern_atom(m_connection.get(), 0, 15, "WM_CHANGE_STATE");
    xcb_intern_atom_reply_t* const atom = xcb_intern_atom_reply(m_connection.get(), asked, nullptr);
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom->atom;
    event.data.data32[0] = XCB_ICCCM_WM_STATE_ICONIC;
    std::free(atom);
    xcb_send_event(m_connection.get(), 0, m_screen->root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    Sync();
}

void XApplication::Destroy(xcb_window_t window) {
    xcb_destroy_window(m_connection.get(), window);
    Sync();
}

void XApplication::TakeKeyboard(xcb_window_t window) {
    xcb_set_input_focus(m_connection.get(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    Sync();
}

xcb_window_t XApplication::KeyboardIsAt() {
    xcb_get_input_focus_reply_t* const answer = xcb_get_input_focus_reply(
        m_connection.get(), xcb_get_input_focus(m_connection.get()), nullptr);
    const xcb_window_t window = answer ? answer->focus : xcb_window_t{};
    std::free(answer);
    return window;
}

int XApplication::TakeTimesSeen() {
    Sync();
    int count = 0;
    while (xcb_generic_event_t* event = xcb_poll_for_event(m_connection.get())) {
        if (event->response_type == XCB_VISIBILITY_NOTIFY) ++count;
        std::free(event);
    }
    return count;
}

} // namespace display_test
