// SPDX-License-Identifier: MIT
#include "Linux/XInputLink.h"

#include <utility>

namespace quenthisar {

namespace {

constexpr std::uint16_t inputMajor = 2, inputMinor = 2;
constexpr std::uint32_t fixesMajor = 5; // pointer barriers

void selectOn(const XConnection& connection, XPointers::DeviceId devices, std::uint32_t mask) {
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const request{{devices, 1}, mask};
    xcb_input_xi_select_events(connection.get(), connection.root(), 1, &request.head);
}

} // namespace

std::unique_ptr<XInputLink> XInputLink::open(const DesktopSpace& space, Handlers handlers) {
    auto connection = XConnection::open();
    if (!connection) return nullptr;
    std::unique_ptr<XInputLink> link(
        new XInputLink(std::move(connection), space, std::move(handlers)));
    return link->negotiate() ? std::move(link) : nullptr;
}

bool XInputLink::isSupported() {
    const DesktopSpace space;
    return open(space, {.deliver = [](const TapEvent&) {},
                        .pressHotkey = [](const HotkeyIdentity&) {},
                        .refusedForLong = [] {},
                        .lost = [] {}}) != nullptr;
}

XInputLink::XInputLink(std::unique_ptr<XConnection> opened, const DesktopSpace& desktop,
                       Handlers actions)
    : connection(std::move(opened)), space(desktop), handlers(std::move(actions)),
      pump(*connection, {.event = [this](const auto& event) { take(event); },
                         .replies = [this] { return takePointerReply(); },
                         .lost =
                             [this] {
                                 grab.end();
                                 pacerTimer.stop();
                                 handlers.lost();
                             }}),
      grab(*connection, {.attempted = [this] { pump.drainSoon(); },
                         .refusedForLong = [this] { handlers.refusedForLong(); }}),
      hotkeys(*connection, keyboard) {
    renewal.setSingleShot(true);
    QObject::connect(&renewal, &QTimer::timeout, &renewal, [this] {
        hotkeys.renew();
        pump.drainSoon();
    });
    pacerTimer.setSingleShot(true);
    pacerTimer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&pacerTimer, &QTimer::timeout, &pacerTimer, [this] { deliverDueMotion(); });
}

/// True when the server has all that is needed; events arrive from then on.
bool XInputLink::negotiate() {
    auto* c = connection->get();
    const auto* extension = connection->extension(xcb_input_id);
    if (!extension || !connection->extension(xcb_xfixes_id)) return false;
    inputOpcode = extension->major_opcode;
    const auto inputCookie = xcb_input_xi_query_version(c, inputMajor, inputMinor);
    const auto fixesCookie = xcb_xfixes_query_version(c, fixesMajor, 0);
    const XOwned<xcb_input_xi_query_version_reply_t> input{
        xcb_input_xi_query_version_reply(c, inputCookie, nullptr)};
    const XOwned<xcb_xfixes_query_version_reply_t> fixes{
        xcb_xfixes_query_version_reply(c, fixesCookie, nullptr)};
    if (!input ||
        std::pair(input->major_version, input->minor_version) < std::pair(inputMajor, inputMinor))
        return false;
    if (!fixes || fixes->major_version < fixesMajor || !keyboard.open(*connection)) return false;
    selectOn(*connection, XCB_INPUT_DEVICE_ALL,
             XCB_INPUT_XI_EVENT_MASK_HIERARCHY | XCB_INPUT_XI_EVENT_MASK_DEVICE_CHANGED);
    const std::uint32_t rootChanges = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(c, connection->root(), XCB_CW_EVENT_MASK, &rootChanges);
    pointers.read(*connection);
    pump.drainSoon();
    return true;
}

void XInputLink::selectEvents(bool everything) {
    std::uint32_t mask = 0;
    if (listening || everything) mask |= XCB_INPUT_XI_EVENT_MASK_RAW_MOTION;
    // Releases end the grabs of other clients.
    if (everything)
        mask |= XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE |
                XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;
    selectOn(*connection, XCB_INPUT_DEVICE_ALL_MASTER, mask);
}

} // namespace quenthisar
