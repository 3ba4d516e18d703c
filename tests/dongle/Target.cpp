// SPDX-License-Identifier: MIT
#include "Target.h"

#include <QElapsedTimer>

#include <cstdlib>
#include <poll.h>
#include <stdexcept>

namespace quenthisar::dongle {

Target::Target(const QString& display)
    : connection(xcb_connect(display.toLatin1().constData(), nullptr)) {
    auto* c = connection.get();
    if (xcb_connection_has_error(c) != 0) throw std::runtime_error("no X server");
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    const auto window = xcb_generate_id(c);
    const std::uint32_t values[] = {
        1, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_BUTTON_PRESS |
               XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, screen->width_in_pixels,
                      screen->height_in_pixels, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    xcb_map_window(c, window);
    xcb_set_input_focus(c, XCB_INPUT_FOCUS_NONE, window, XCB_CURRENT_TIME);
    std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
}

std::string Target::text(const xcb_generic_event_t& event) const {
    const auto type = event.response_type & 0x7F;
    const auto& input = reinterpret_cast<const xcb_key_press_event_t&>(event);
    const auto detail = std::to_string(input.detail) + " ";
    switch (type) {
    case XCB_KEY_PRESS: return "+" + detail;
    case XCB_KEY_RELEASE: return "-" + detail;
    case XCB_BUTTON_PRESS: return "+button" + detail;
    case XCB_BUTTON_RELEASE: return "-button" + detail;
    case XCB_MOTION_NOTIFY:
        return std::to_string(input.root_x) + "," + std::to_string(input.root_y) + " ";
    default: return {};
    }
}

std::string Target::events(std::size_t expected, std::chrono::milliseconds limit) {
    QElapsedTimer elapsed;
    elapsed.start();
    std::string all;
    while (expected > 0) {
        const std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> event{
            xcb_poll_for_event(connection.get()), &std::free};
        if (event) {
            const auto one = text(*event);
            all += one;
            if (!one.empty()) --expected;
            continue;
        }
        const auto left = limit.count() - elapsed.elapsed();
        pollfd waiting{xcb_get_file_descriptor(connection.get()), POLLIN, 0};
        if (left <= 0 || ::poll(&waiting, 1, static_cast<int>(left)) <= 0) break;
    }
    return all;
}

} // namespace quenthisar::dongle
