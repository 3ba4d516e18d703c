// SPDX-License-Identifier: MIT
#include "XTestTarget.h"

#include <array>
#include <cstdlib>
#include <sys/socket.h>
#include <sys/uio.h>
#include <utility>
#include <xcb/xcbext.h>

namespace quenthisar::dongle {

namespace {

// X key codes are the kernel's, moved out of the way of what X reserves.
constexpr int firstKeyCode = 8;

/// Replies carry the lower 16 bits of their request's number, so that one has to come well before
/// they are used up.
constexpr std::uint64_t mostUntold = 1U << 14;
constexpr std::size_t mostMade = 256; // which are written at once

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
    opcode = xcb_get_extension_data(c, &xcb_test_id)->major_opcode;

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
    auto& request = made.emplace_back();
    request.major_opcode = opcode;
    request.minor_opcode = XCB_TEST_FAKE_INPUT;
    request.length = sizeof(request) / 4;
    request.type = type;
    request.detail = detail;
    request.root = root;
    request.rootX = static_cast<std::int16_t>(x);
    request.rootY = static_cast<std::int16_t>(y);
    if (made.size() == mostMade) flush();
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

// xcb polls before it writes, which for one small request costs as much as the writing.
void XTestTarget::flush() {
    if (root == XCB_NONE || made.empty()) return;
    takeSocket();
    auto* c = connection.get();
    auto* bytes = reinterpret_cast<std::byte*>(made.data());
    const auto size = made.size() * sizeof(made.front());
    const auto sent = ::send(xcb_get_file_descriptor(c), bytes, size, MSG_DONTWAIT | MSG_NOSIGNAL);
    const auto gone = sent < 0 ? 0 : static_cast<std::size_t>(sent);
    untold += made.size();
    if (gone < size) {
        iovec rest{.iov_base = bytes + gone, .iov_len = size - gone};
        xcb_writev(c, &rest, 1, 0); // waits until the server takes it
        checkConnection();
    }
    made.clear();
    if (untold < mostUntold) return;
    xcb_discard_reply(c, xcb_get_input_focus(c).sequence);
    xcb_flush(c);
}

void XTestTarget::takeSocket() {
    if (ownsSocket) return;
    std::uint64_t sentBefore = 0;
    ownsSocket = xcb_take_socket(
                     connection.get(),
                     [](void* target) { static_cast<XTestTarget*>(target)->giveSocketBack(); },
                     this, 0, &sentBefore) != 0;
}

void XTestTarget::giveSocketBack() {
    ownsSocket = false;
    if (untold == 0) return;
    // It is told of them by writing something.
    std::array<std::uint8_t, 4> nothing{XCB_NO_OPERATION, 0, 1, 0};
    iovec request{.iov_base = nothing.data(), .iov_len = nothing.size()};
    xcb_writev(connection.get(), &request, 1, std::exchange(untold, 0) + 1);
}

void XTestTarget::sync() {
    flush();
    if (root == XCB_NONE) return;
    owned(xcb_get_input_focus_reply(connection.get(), xcb_get_input_focus(connection.get()),
                                    nullptr));
    checkConnection();
}

} // namespace quenthisar::dongle
