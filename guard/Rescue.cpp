// SPDX-License-Identifier: MIT
#include "Rescue.h"

#include <systemd/sd-bus.h>
#include <xcb/xcb.h>

#include <cstdlib>

namespace quenthisar::guard {

namespace {

constexpr std::uint64_t answerLimit = 5'000'000; // us; the daemon takes 2.1 to 2.6 s

} // namespace

XRescue::XRescue() {
    connect();
}

XRescue::~XRescue() {
    xcb_disconnect(connection);
}

bool XRescue::connect() {
    xcb_disconnect(connection);
    connection = xcb_connect(nullptr, nullptr);
    return xcb_connection_has_error(connection) == 0;
}

void XRescue::killClient(std::uint32_t resource) {
    if (xcb_connection_has_error(connection) != 0 && !connect()) return;
    const auto cookie = xcb_kill_client_checked(connection, resource);
    std::free(xcb_request_check(connection, cookie));
}

void disconnectDongle(const std::string& path) {
    sd_bus* bus = nullptr;
    if (sd_bus_open_system(&bus) < 0) return;
    sd_bus_set_method_call_timeout(bus, answerLimit);
    sd_bus_call_method(bus, "org.bluez", path.c_str(), "org.bluez.Device1", "Disconnect", nullptr,
                       nullptr, "");
    sd_bus_flush_close_unref(bus);
}

} // namespace quenthisar::guard
