#include "window/display/DisplayWindows.h"

#include <algorithm>

#include <platform/CodePage.h>
#include <xcb/xcb_icccm.h>

#include "window/MessageQueue.h"
#include "window/WindowTable.h"

namespace platform {
namespace {

template <class TEvent>
const TEvent& As(const xcb_generic_event_t& event) {
    return reinterpret_cast<const TEvent&>(event);
}

// Whether the keyboard has come to the window or left it: not for the time of a menu, and not from
// or to a part of it.
bool IsFocusChange(const xcb_focus_in_event_t& event) {
    if (event.mode != XCB_NOTIFY_MODE_NORMAL && event.mode != XCB_NOTIFY_MODE_WHILE_GRABBED)
        return false;
    return event.detail != XCB_NOTIFY_DETAIL_INFERIOR &&
           event.detail <= XCB_NOTIFY_DETAIL_NONLINEAR_VIRTUAL;
}

} // namespace

DisplayWindows::DisplayWindows(XConnection& connection, std::shared_ptr<CommandQueue> commands)
    : m_connection(connection), m_commands(std::move(commands)) {
    m_connection.ListenToRoot();
}

void DisplayWindows::Handle(const xcb_generic_event_t& event) {
    constexpr std::uint8_t sentByAnotherClient = 0x80;
    if (event.response_type & sentByAnotherClient) return;
    switch (event.response_type) {
    case XCB_CREATE_NOTIFY:
        return OnCreate(As<xcb_create_notify_event_t>(event));
    case XCB_MAP_NOTIFY:
        return OnMap(As<xcb_map_notify_event_t>(event).window);
    case XCB_UNMAP_NOTIFY:
        return OnUnmap(As<xcb_unmap_notify_event_t>(event).window);
    case XCB_DESTROY_NOTIFY:
        return OnDestroy(As<xcb_destroy_notify_event_t>(event).window);
    case XCB_PROPERTY_NOTIFY:
        return OnProperty(As<xcb_property_notify_event_t>(event));
    case XCB_FOCUS_IN:
        return OnFocus(As<xcb_focus_in_event_t>(event), true);
    case XCB_FOCUS_OUT:
        return OnFocus(As<xcb_focus_in_event_t>(event), false);
    case XCB_VISIBILITY_NOTIFY:
        if (const auto known = m_known.find(As<xcb_visibility_notify_event_t>(event).window);
            known != m_known.end()) {
            known->second.isViewable = true;
            Note(known->second);
        }
        return;
    default:
        return; // also errors: the window was gone already
    }
}

void DisplayWindows::OnCreate(const xcb_create_notify_event_t& event) {
    const bool isMenuOrTip = event.override_redirect != 0;
    const bool isAwaited = !m_watches.empty() || !m_known.empty();
    if (event.parent != m_connection.Root() || isMenuOrTip || !isAwaited) return;
    m_connection.ListenTo(event.window);
    Stranger& stranger = m_strangers[event.window];
    Recognise(event.window, stranger);
    // It may have been mapped before anybody listened.
    if (m_connection.IsMapped(event.window)) OnMap(event.window);
}

void DisplayWindows::Recognise(xcb_window_t window, Stranger& stranger) {
    if (stranger.watch) return;
    const std::string instance = m_connection.InstanceOf(window);
    if (instance.empty()) return;
    const auto watch = std::find_if(m_watches.begin(), m_watches.end(), [&](const auto& one) {
        return instance.ends_with(one->Instance()) && !one->IsClosed();
    });
    if (watch == m_watches.end()) return;
    stranger.watch = *watch;
    stranger.isHeld = m_connection.Hold(window);
}

void DisplayWindows::OnMap(xcb_window_t window) {
    if (const auto known = m_known.find(window); known != m_known.end()) {
        known->second.isMapped = true;
        if (!known->second.mayShow) m_connection.Withdraw(window);
        Note(known->second);
    } else if (const auto stranger = m_strangers.extract(window)) {
        Decide(window, stranger.mapped());
    }
}

void DisplayWindows::Decide(xcb_window_t window, Stranger stranger) {
    const xcb_window_t ownerId = m_connection.OwnerOf(window);
    const auto owner = m_known.find(ownerId);
    const bool isDialog = owner != m_known.end();
    const bool isAwaited = !isDialog && stranger.watch && !stranger.watch->IsClosed();
    if (isAwaited)
        m_connection.Withdraw(window);
    else
        Free(window, stranger);
    if (!isDialog && !isAwaited) return;
    Known& known = m_known[window];
    known.window = std::make_shared<DisplayWindow>(window, m_commands);
    known.isHeld = stranger.isHeld;
    known.wmState = m_connection.WmStateOf(window);
    if (isAwaited) known.awaiting = stranger.watch;
    if (isDialog) {
        known.owner = ownerId;
        known.mayShow = true;
        if (owner->second.queue) Enter(window, owner->second.queue);
    }
    Note(known);
}

void DisplayWindows::OnUnmap(xcb_window_t window) {
    const auto known = m_known.find(window);
    if (known == m_known.end()) return;
    known->second.isMapped = false;
    known->second.isViewable = false;
    Note(known->second);
}

void DisplayWindows::OnDestroy(xcb_window_t window) {
    m_strangers.erase(window);
    const auto known = m_known.extract(window);
    if (known) Drop(known.mapped(), true);
}

void DisplayWindows::OnProperty(const xcb_property_notify_event_t& event) {
    if (const auto stranger = m_strangers.find(event.window); stranger != m_strangers.end()) {
        if (event.atom == XCB_ATOM_WM_CLASS) Recognise(event.window, stranger->second);
        return;
    }
    const auto known = m_known.find(event.window);
    if (known == m_known.end()) return;
    if (event.atom == m_connection.WmState()) {
        known->second.wmState = m_connection.WmStateOf(event.window);
        Note(known->second);
    } else if (event.atom == m_connection.NetWmName() || event.atom == XCB_ATOM_WM_NAME) {
        NoteTitle(known->second);
    }
}

void DisplayWindows::OnFocus(const xcb_focus_in_event_t& event, bool isActive) {
    const auto known = m_known.find(event.event);
    if (known == m_known.end() || !IsFocusChange(event)) return;
    WindowTable::Get().NoteActive(known->second.window->Handle(), isActive);
}

void DisplayWindows::Note(Known& known) {
    WindowCondition condition;
    condition.isVisible = known.isMapped && known.wmState != XCB_ICCCM_WM_STATE_ICONIC;
    condition.isViewable = known.isViewable;
    condition.isWithdrawn = !known.isMapped && known.wmState == XCB_ICCCM_WM_STATE_WITHDRAWN;
    if (known.awaiting) {
        if (!condition.isWithdrawn) return;
        std::exchange(known.awaiting, nullptr)->Add(known.window);
    }
    WindowTable& table = WindowTable::Get();
    const HWND handle = known.window->Handle();
    if (known.queue)
        table.Visit(handle, [&](WindowState& state) { state.isVisible = condition.isVisible; });
    if (!condition.isVisible) table.NoteActive(handle, false);
    known.window->Note(condition);
}

void DisplayWindows::NoteTitle(const Known& known) {
    if (!known.queue) return;
    const CString title = AnsiFromUtf8(m_connection.TitleOf(known.window->Id()));
    WindowTable::Get().Visit(known.window->Handle(),
                             [&](WindowState& state) { state.made.title = title; });
}

void DisplayWindows::Drop(const Known& known, bool isReported) {
    WindowTable::Get().RemoveForeign(known.window->Handle(), *known.window);
    known.window->NoteGone(isReported);
}

void DisplayWindows::Leave(bool isBroken) {
    for (const auto& watch : m_watches)
        watch->Close();
    for (auto& [id, stranger] : m_strangers)
        Free(id, stranger);
    for (auto& [id, known] : m_known) {
        Free(id, known); // what is held aside goes down with the connection
        Drop(known, isBroken);
    }
    m_known.clear();
    m_connection.Sync();
}

void DisplayWindows::Add(std::shared_ptr<AppearedWindows> watch) {
    m_connection.Sync();
    m_watches.push_back(std::move(watch));
    m_watches.back()->NoteWatched();
}

void DisplayWindows::Remove(const AppearedWindows& watch) {
    std::erase_if(m_watches, [&](const auto& one) { return one.get() == &watch; });
    for (auto& [id, stranger] : m_strangers) {
        if (stranger.watch.get() != &watch) continue;
        Free(id, stranger);
        stranger = {};
    }
}

void DisplayWindows::MapFirstHeld(const AppearedWindows& watch) {
    const auto held = std::find_if(m_strangers.begin(), m_strangers.end(), [&](const auto& entry) {
        return entry.second.watch.get() == &watch && entry.second.isHeld;
    });
    if (held != m_strangers.end()) m_connection.Map(held->first);
}

void DisplayWindows::Enter(xcb_window_t window, std::shared_ptr<MessageQueue> queue) {
    const auto found = m_known.find(window);
    if (found == m_known.end()) return;
    Known& known = found->second;
    WindowState state;
    state.made.className = kBrowserWindowClass;
    state.made.title = AnsiFromUtf8(m_connection.TitleOf(window));
    state.procedure = &DefWindowProcA;
    state.queue = known.queue = std::move(queue);
    state.foreign = known.window;
    state.isVisible = known.window->IsVisible();
    if (known.owner) state.parent = reinterpret_cast<HWND>(std::uintptr_t{known.owner});
    if (WindowTable::Get().AddForeign(known.window->Handle(), std::move(state)))
        known.window->NoteEntered();
}

void DisplayWindows::Forget(xcb_window_t window) {
    for (auto entry = m_known.begin(); entry != m_known.end();) {
        Known& known = entry->second;
        if (entry->first != window && known.owner != window) {
            ++entry;
            continue;
        }
        Free(entry->first, known);
        Drop(known, false);
        entry = m_known.erase(entry);
    }
}

void DisplayWindows::Show(xcb_window_t window, bool isVisible) {
    const auto known = m_known.find(window);
    if (known == m_known.end()) return;
    if (!isVisible) return m_connection.Withdraw(window);
    known->second.mayShow = true;
    Free(window, known->second);
    m_connection.Map(window);
}

void DisplayWindows::Raise(xcb_window_t window) {
    const auto known = m_known.find(window);
    const bool isThere =
        known != m_known.end() &&
        (known->second.isMapped || known->second.wmState != XCB_ICCCM_WM_STATE_WITHDRAWN);
    if (isThere) m_connection.Activate(window);
}

} // namespace platform
