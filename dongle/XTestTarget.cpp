// SPDX-License-Identifier: MIT
#include "XTestTarget.h"

#include <cstdlib>
#include <utility>
#include <xcb/xtest.h>

namespace quenthisar::dongle {

namespace {

// X key codes are the kernel's, moved out of the way of what X reserves.
constexpr int firstKeyCode = 8;

template <class T>
std::unique_ptr<T, decltype(&std::free)> owned(T* reply) {
    return {reply, &std::free};
}

} // namespace

XTestTarget::XTestTarget(const std::string& display, std::function<void()> lost)
    : onLost(std::move(lost)) {
    int screenNumber = 0;
    connection.reset(xcb_connect(display.c_str(), &screenNumber));
    auto* c = connection.get();
    if (xcb_connection_has_error(c) != 0) return;
    const auto version =
        owned(xcb_test_get_version_reply(c, xcb_test_get_version(c, 2, 2), nullptr));
    auto screen = xcb_setup_roots_iterator(xcb_get_setup(c));
    for (; screen.rem > 0 && screenNumber > 0; --screenNumber) xcb_screen_next(&screen);
    if (!version || screen.rem == 0) return;
    root = screen.data->root;

    readable = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(c), QSocketNotifier::Read);
    QObject::connect(readable.get(), &QSocketNotifier::activated, readable.get(),
                     [this] { drain(); });
}

XTestTarget::~XTestTarget() = default;

// Nothing is selected, so all that ever comes is an error or the end.
void XTestTarget::drain() {
    while (owned(xcb_poll_for_event(connection.get()))) {
    }
    checkConnection();
}

void XTestTarget::checkConnection() {
    if (xcb_connection_has_error(connection.get()) == 0 || root.exchange(XCB_NONE) == XCB_NONE)
        return;
    QMetaObject::invokeMethod(readable.get(), [this] { readable->setEnabled(false); });
    if (onLost) onLost();
}

void XTestTarget::fake(std::uint8_t type, std::uint8_t detail, int x, int y) {
    if (root == XCB_NONE) return;
    xcb_test_fake_input(connection.get(), type, detail, XCB_CURRENT_TIME, root,
                        static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
}

void XTestTarget::key(std::uint8_t code, bool down) {
    fake(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, static_cast<std::uint8_t>(code + firstKeyCode));
}

void XTestTarget::button(std::uint8_t number, bool down) {
    fake(down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, number);
}

void XTestTarget::move(int dx, int dy) {
    constexpr std::uint8_t relative = 1;
    fake(XCB_MOTION_NOTIFY, relative, dx, dy);
}

void XTestTarget::flush() {
    if (root == XCB_NONE) return;
    xcb_flush(connection.get());
    checkConnection();
}

void XTestTarget::sync() {
    if (root == XCB_NONE) return;
    owned(xcb_get_input_focus_reply(connection.get(), xcb_get_input_focus(connection.get()),
                                    nullptr));
    checkConnection();
}

} // namespace quenthisar::dongle
