// SPDX-License-Identifier: MIT
#include "Linux/XDisplays.h"

#include <xcb/randr.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace quenthisar {

namespace {

constexpr std::uint32_t randrMajor = 1, randrMinor = 5; // monitors

/// Screens come and go in several steps.
constexpr std::chrono::milliseconds quietTime{250};

} // namespace

XDisplays::XDisplays(DesktopSpace& desktop) : space(desktop) {
    settled.setSingleShot(true);
    settled.setInterval(quietTime);
    QObject::connect(&settled, &QTimer::timeout, &settled, [this] {
        stale = true;
        const auto handler = changed;
        if (handler) handler();
    });
    open();
}

void XDisplays::open() {
    stale = true;
    pump.reset();
    connection = XConnection::open();
    if (connection && !selectEvents()) connection.reset();
    if (connection)
        pump = std::make_unique<XEventPump>(
            *connection, XEventPump::Handlers{.event = [this](const auto& event) { take(event); },
                                              .lost = [this] { settled.start(); }});
}

bool XDisplays::selectEvents() {
    const auto* extension = connection->extension(xcb_randr_id);
    if (!extension) return false;
    firstEvent = extension->first_event;
    const XOwned<xcb_randr_query_version_reply_t> version{xcb_randr_query_version_reply(
        connection->get(), xcb_randr_query_version(connection->get(), randrMajor, randrMinor),
        nullptr)};
    if (!version || std::pair(version->major_version, version->minor_version) <
                        std::pair(randrMajor, randrMinor))
        return false;
    xcb_randr_select_input(connection->get(), connection->root(),
                           XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    // A change of the monitors alone shows only as one of the root window.
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection->get(), connection->root(), XCB_CW_EVENT_MASK, &mask);
    connection->flush();
    return true;
}

std::vector<Screen> XDisplays::screens() {
    if (!connection || connection->isLost()) open();
    if (std::exchange(stale, false)) read();
    std::vector<Screen> result;
    for (const auto& monitor : monitors)
        result.push_back({.screenNumber = monitor.number,
                          .frame = space.frameworkFromRoot(monitor.frame),
                          .localizedName = displayName(monitor)});
    return result;
}

void XDisplays::read() {
    monitors = connection ? readMonitors(*connection) : std::vector<Monitor>{};
    putPrimaryFirst(monitors);
    if (!monitors.empty()) space.setPrimary(monitors.front().frame);
    if (pump) pump->drainSoon();
}

std::optional<std::string> XDisplays::displayUUID(std::uint32_t displayID) {
    const auto it = std::ranges::find(monitors, displayID, &Monitor::number);
    if (it == monitors.end()) return std::nullopt;
    return displayIdentifier(*it, monitors).text();
}

void XDisplays::take(const xcb_generic_event_t& event) {
    const int type = event.response_type & 0x7F;
    if (type == firstEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
        type == firstEvent + XCB_RANDR_NOTIFY || type == XCB_CONFIGURE_NOTIFY)
        settled.start();
}

} // namespace quenthisar
