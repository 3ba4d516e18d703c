// SPDX-License-Identifier: MIT
#include "e2e/SystemTray.h"

#include <array>
#include <cstdlib>
#include <memory>

namespace quenthisar::e2e {

namespace {

constexpr std::uint32_t requestDock = 0;

} // namespace

SystemTray::SystemTray(const QString& display)
    : client(display), c(client.get()), window(xcb_generate_id(c)) {
    const std::array<std::uint32_t, 2> values{1, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, client.root(), frame.x(), frame.y(),
                      frame.width(), frame.height(), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                      values.data());
    xcb_map_window(c, window);
    const auto selection = client.atom("_NET_SYSTEM_TRAY_S0");
    xcb_set_selection_owner(c, window, selection, XCB_CURRENT_TIME);
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = client.root();
    message.type = client.atom("MANAGER");
    message.data.data32[1] = selection;
    message.data.data32[2] = window;
    xcb_send_event(c, false, client.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(c);
}

SystemTray::~SystemTray() {
    // As an orderly one does: the icon lives on.
    if (icon) {
        xcb_unmap_window(c, icon);
        xcb_reparent_window(c, icon, client.root(), 0, 0);
    }
    xcb_destroy_window(c, window);
    xcb_flush(c);
}

void SystemTray::embed(xcb_window_t comer) {
    icon = comer;
    xcb_change_save_set(c, XCB_SET_MODE_INSERT, icon);
    xcb_reparent_window(c, icon, window, 0, 0);
    const std::array<std::uint32_t, 2> size{frame.width(), frame.height()};
    xcb_configure_window(c, icon, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size.data());
    xcb_map_window(c, icon);
    xcb_flush(c);
}

bool SystemTray::hasIcon() {
    const auto opcode = client.atom("_NET_SYSTEM_TRAY_OPCODE");
    while (auto* event = xcb_poll_for_event(c)) {
        const std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> owner(event, std::free);
        const int type = event->response_type & 0x7F;
        const auto* message = reinterpret_cast<const xcb_client_message_event_t*>(event);
        const auto* destroyed = reinterpret_cast<const xcb_destroy_notify_event_t*>(event);
        if (type == XCB_CLIENT_MESSAGE && message->type == opcode &&
            message->data.data32[1] == requestDock)
            embed(message->data.data32[2]);
        if (type == XCB_DESTROY_NOTIFY && destroyed->window == icon) icon = XCB_WINDOW_NONE;
    }
    return icon != XCB_WINDOW_NONE;
}

} // namespace quenthisar::e2e
