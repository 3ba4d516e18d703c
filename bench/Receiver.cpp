// SPDX-License-Identifier: MIT
#include "Receiver.h"

#include "demo/XClient.h"

#include <poll.h>
#include <xcb/xinput.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <stdexcept>

namespace quenthisar::bench {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Reply = std::unique_ptr<T, Free>;

constexpr int looksForStop = 20; // ms

void selectRawEvents(const demo::XClient& client) {
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const request{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                    XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS |
                        XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE |
                        XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                        XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE};
    auto* c = client.get();
    const Reply<xcb_input_xi_query_version_reply_t> version{
        xcb_input_xi_query_version_reply(c, xcb_input_xi_query_version(c, 2, 2), nullptr)};
    const Reply<xcb_generic_error_t> error{xcb_request_check(
        c, xcb_input_xi_select_events_checked(c, client.root(), 1, &request.head))};
    if (!version || error) throw std::runtime_error("the X server lacks XInput 2.2");
}

/// One function of xcb serves all raw events.
QPoint motionOf(const xcb_input_raw_motion_event_t& event) {
    if (event.valuators_len == 0) return {};
    const auto mask = *xcb_input_raw_button_press_valuator_mask(&event);
    const auto* value = xcb_input_raw_button_press_axisvalues(&event);
    QPoint result;
    if ((mask & 1U) != 0) result.setX((value++)->integral);
    if ((mask & 2U) != 0) result.setY(value->integral);
    return result;
}

std::optional<Arrival> arrivalOf(const xcb_generic_event_t& event, Clock::time_point now) {
    if ((event.response_type & 0x7F) != XCB_GE_GENERIC) return std::nullopt;
    const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
    Arrival result{.time = now, .detail = static_cast<std::uint8_t>(raw.detail)};
    switch (raw.event_type) {
    case XCB_INPUT_RAW_MOTION:
        result.delta = motionOf(reinterpret_cast<const xcb_input_raw_motion_event_t&>(event));
        // What a wheel turns is told with its clicks, too.
        if (result.delta.isNull()) return std::nullopt;
        return result;
    case XCB_INPUT_RAW_KEY_PRESS:
    case XCB_INPUT_RAW_KEY_RELEASE:
        result.kind = Kind::key;
        result.isDown = raw.event_type == XCB_INPUT_RAW_KEY_PRESS;
        return result;
    case XCB_INPUT_RAW_BUTTON_PRESS:
    case XCB_INPUT_RAW_BUTTON_RELEASE:
        result.isDown = raw.event_type == XCB_INPUT_RAW_BUTTON_PRESS;
        result.kind = raw.detail >= 4 && raw.detail <= 7 ? Kind::scroll : Kind::button;
        // A wheel clicks: its releases say nothing.
        if (result.kind == Kind::scroll && !result.isDown) return std::nullopt;
        return result;
    default: return std::nullopt;
    }
}

} // namespace

Receiver::Receiver(const QString& display) {
    auto client = std::make_unique<demo::XClient>(display);
    selectRawEvents(*client);
    thread = std::jthread{[this, client = std::move(client)](const std::stop_token& stop) {
        receive(stop, client->get());
    }};
}

void Receiver::receive(const std::stop_token& stop, xcb_connection_t* connection) {
    pollfd readable{.fd = xcb_get_file_descriptor(connection), .events = POLLIN, .revents = 0};
    while (!stop.stop_requested() && xcb_connection_has_error(connection) == 0) {
        while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
            const auto arrival = arrivalOf(*event, Clock::now());
            if (!arrival) continue;
            const std::lock_guard lock{mutex};
            received.push_back(*arrival);
            if (arrival->kind == Kind::motion)
                sums.downwards += arrival->delta.y();
            else
                ++sums.others;
        }
        ::poll(&readable, 1, looksForStop);
    }
}

std::vector<Arrival> Receiver::arrivals() const {
    const std::lock_guard lock{mutex};
    return received;
}

Receiver::Progress Receiver::progress() const {
    const std::lock_guard lock{mutex};
    return sums;
}

} // namespace quenthisar::bench
