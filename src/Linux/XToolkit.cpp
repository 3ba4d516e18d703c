// SPDX-License-Identifier: MIT
#include "Linux/XToolkit.h"

#include "Linux/XConnection.h"
#include "Linux/XcbXkb.h"

#include <QGuiApplication>

#include <string_view>

namespace quenthisar::XToolkit {

xcb_connection_t* connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

void ignoreButtonStates() {
    auto* c = connection();
    if (!c) return;
    xcb_xkb_select_events_details_t details{};
    details.affectState = XCB_XKB_STATE_PART_POINTER_BUTTONS;
    xcb_xkb_select_events_aux(c, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, 0, 0,
                              0, &details);
    xcb_flush(c);
}

void activate(WId window) {
    auto* c = connection();
    if (!c) return;
    const auto name = std::string_view("_NET_ACTIVE_WINDOW");
    const XOwned<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    if (!atom) return;
    constexpr std::uint32_t onBehalfOfTheUser = 2; // as a pager does
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = static_cast<xcb_window_t>(window);
    event.type = atom->atom;
    event.data.data32[0] = onBehalfOfTheUser;
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    xcb_send_event(c, 0, root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(c);
}

} // namespace quenthisar::XToolkit
