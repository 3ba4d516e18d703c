// SPDX-License-Identifier: MIT
#include "Rescue.h"

#include <systemd/sd-bus.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdlib>

namespace quenthisar::guard {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

constexpr std::chrono::seconds answerLimit{5}; // the daemon takes 2.1 to 2.6 s

int countAnswer(sd_bus_message* /*answer*/, void* waiting, sd_bus_error* /*error*/) {
    --*static_cast<std::size_t*>(waiting);
    return 0;
}

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
    // Not waited for: a server that doesn't answer must not keep this from what comes next.
    xcb_kill_client(connection, resource);
    xcb_flush(connection);
}

int XRescue::descriptor() const {
    return xcb_connection_has_error(connection) == 0 ? xcb_get_file_descriptor(connection) : -1;
}

void XRescue::drain() {
    while (auto* event = xcb_poll_for_event(connection)) std::free(event);
}

void disconnectDongles(const std::vector<std::string>& paths) {
    sd_bus* bus = nullptr;
    if (paths.empty() || sd_bus_open_system(&bus) < 0) return;
    std::size_t waiting = 0;
    for (const auto& path : paths)
        if (sd_bus_call_method_async(bus, nullptr, "org.bluez", path.c_str(), "org.bluez.Device1",
                                     "Disconnect", countAnswer, &waiting, "") >= 0)
            ++waiting;
    const auto end = Clock::now() + answerLimit;
    for (auto now = Clock::now(); waiting > 0 && now < end; now = Clock::now()) {
        const int done = sd_bus_process(bus, nullptr);
        if (done < 0) break;
        if (done == 0)
            sd_bus_wait(bus, static_cast<std::uint64_t>(ceil<microseconds>(end - now).count()));
    }
    sd_bus_flush_close_unref(bus);
}

} // namespace quenthisar::guard
