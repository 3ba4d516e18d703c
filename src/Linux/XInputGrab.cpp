// SPDX-License-Identifier: MIT
#include "Linux/XInputGrab.h"

#include "Linux/InputPoll.h"

#include <utility>

namespace quenthisar {

namespace {

constexpr std::chrono::milliseconds retryInterval{10};
constexpr std::chrono::seconds longRefusal{1};

constexpr std::uint32_t keyboardMask =
    XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;
// While a client holds the grab, what it selected on the root delivers no raw events.
constexpr std::uint32_t pointerMask = XCB_INPUT_XI_EVENT_MASK_BUTTON_PRESS |
                                      XCB_INPUT_XI_EVENT_MASK_BUTTON_RELEASE |
                                      XCB_INPUT_XI_EVENT_MASK_RAW_MOTION;

/// Longer than any desktop. The start is -1, of 16 bits: where two lines begin, at 0, the server
/// lets a diagonal move through.
constexpr std::uint16_t barrierStart = 0xFFFF, barrierEnd = 0x7FFF;

xcb_input_xi_grab_device_cookie_t grab(const XConnection& connection, XPointers::DeviceId device,
                                       const std::uint32_t& mask) {
    return xcb_input_xi_grab_device(connection.get(), connection.root(), XCB_CURRENT_TIME,
                                    XCB_CURSOR_NONE, device, XCB_INPUT_GRAB_MODE_22_ASYNC,
                                    XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, 1,
                                    &mask);
}

bool isGranted(const XConnection& connection, xcb_input_xi_grab_device_cookie_t cookie) {
    const XOwned<xcb_input_xi_grab_device_reply_t> reply{
        xcb_input_xi_grab_device_reply(connection.get(), cookie, nullptr)};
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

} // namespace

XInputGrab::XInputGrab(const XConnection& server, Events handlers)
    : connection(server), events(std::move(handlers)) {
    for (auto& barrier : barriers) barrier = xcb_generate_id(connection.get());
    retry.setTimerType(Qt::PreciseTimer);
    retry.setInterval(retryInterval);
    QObject::connect(&retry, &QTimer::timeout, &retry, [this] {
        attempt();
        events.attempted();
    });
}

bool XInputGrab::begin(XPointers::Masters devices) {
    if (isActive()) return true;
    auto* c = connection.get();
    const auto cookie = xcb_input_xi_query_pointer(c, connection.root(), devices.pointer);
    XOwned<xcb_input_xi_query_pointer_reply_t> pointer{
        xcb_input_xi_query_pointer_reply(c, cookie, nullptr)};
    if (!pointer) return false;
    masters = devices;
    sequence = cookie.sequence;
    kept = std::move(pointer);
    createBarriers(static_cast<std::uint16_t>(kept->root_x >> 16),
                   static_cast<std::uint16_t>(kept->root_y >> 16));
    attempt();
    return true;
}

void XInputGrab::end() {
    if (!isActive()) return;
    retry.stop();
    pendingSince.reset();
    for (const auto barrier : barriers)
        xcb_xfixes_delete_pointer_barrier(connection.get(), barrier);
    warpBack();
    if (pointerIsOurs)
        xcb_input_xi_ungrab_device(connection.get(), XCB_CURRENT_TIME, masters.pointer);
    if (keyboardIsOurs)
        xcb_input_xi_ungrab_device(connection.get(), XCB_CURRENT_TIME, masters.keyboard);
    keyboardIsOurs = pointerIsOurs = false;
    kept.reset();
}

void XInputGrab::attempt() {
    if (!isPending() || connection.isLost()) {
        retry.stop();
        return;
    }
    std::optional<xcb_input_xi_grab_device_cookie_t> keyboard, pointer;
    if (!keyboardIsOurs) keyboard = grab(connection, masters.keyboard, keyboardMask);
    if (!pointerIsOurs) pointer = grab(connection, masters.pointer, pointerMask);
    // The pointer may have moved on before the barriers stood.
    if (!pendingSince) warpBack();
    if (keyboard) keyboardIsOurs = isGranted(connection, *keyboard);
    if (pointer) pointerIsOurs = isGranted(connection, *pointer);

    const auto now = std::chrono::steady_clock::now();
    if (!isPending()) {
        retry.stop();
    } else if (!pendingSince) {
        retry.start();
        InputPoll::stir();
        pendingSince = now;
    } else if (now - *pendingSince > longRefusal) {
        events.refusedForLong();
    }
}

/// Four lines that no motion crosses: two on either side of the pixel.
void XInputGrab::createBarriers(std::uint16_t x, std::uint16_t y) {
    struct Line {
        std::uint16_t x1, y1, x2, y2;
    };
    const auto right = static_cast<std::uint16_t>(x + 1), below = static_cast<std::uint16_t>(y + 1);
    const std::array<Line, 4> lines{{{x, barrierStart, x, barrierEnd},
                                     {right, barrierStart, right, barrierEnd},
                                     {barrierStart, y, barrierEnd, y},
                                     {barrierStart, below, barrierEnd, below}}};
    for (std::size_t i = 0; i < lines.size(); ++i) {
        xcb_xfixes_create_pointer_barrier(connection.get(), barriers[i], connection.root(),
                                          lines[i].x1, lines[i].y1, lines[i].x2, lines[i].y2, 0, 0,
                                          nullptr);
    }
}

void XInputGrab::warpBack() {
    xcb_input_xi_warp_pointer(connection.get(), XCB_WINDOW_NONE, connection.root(), 0, 0, 0, 0,
                              kept->root_x, kept->root_y, masters.pointer);
}

} // namespace quenthisar
