// SPDX-License-Identifier: MIT
// The least that does the job: takes the input of one X server and makes it on another one, at once
// and for ever. What Quenthisar costs is measured against it.
#include <xcb/xcb.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <poll.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Reply = std::unique_ptr<T, Free>;

template <class T>
const T& as(const xcb_generic_event_t& event) {
    return reinterpret_cast<const T&>(event);
}

constexpr std::uint32_t keyboardMask =
    XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;
constexpr std::uint32_t pointerMask = XCB_INPUT_XI_EVENT_MASK_BUTTON_PRESS |
                                      XCB_INPUT_XI_EVENT_MASK_BUTTON_RELEASE |
                                      XCB_INPUT_XI_EVENT_MASK_RAW_MOTION;

struct Server {
    xcb_connection_t* connection;
    xcb_window_t root;

    explicit Server(const char* display) : connection(xcb_connect(display, nullptr)) {
        if (xcb_connection_has_error(connection) != 0) {
            std::fprintf(stderr, "bench-floor: no X server at %s\n", display);
            std::exit(1);
        }
        root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    }
};

void grab(const Server& host, xcb_input_device_id_t device, std::uint32_t mask) {
    const auto cookie =
        xcb_input_xi_grab_device(host.connection, host.root, XCB_CURRENT_TIME, XCB_CURSOR_NONE,
                                 device, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
                                 XCB_INPUT_GRAB_OWNER_NO_OWNER, 1, &mask);
    const Reply<xcb_input_xi_grab_device_reply_t> reply{
        xcb_input_xi_grab_device_reply(host.connection, cookie, nullptr)};
    if (reply && reply->status == XCB_GRAB_STATUS_SUCCESS) return;
    std::fputs("bench-floor: no grab\n", stderr);
    std::exit(1);
}

class Floor {
public:
    Floor(const char* hostDisplay, const char* targetDisplay)
        : host(hostDisplay), target(targetDisplay) {
        auto* c = host.connection;
        const Reply<xcb_input_xi_query_version_reply_t> version{
            xcb_input_xi_query_version_reply(c, xcb_input_xi_query_version(c, 2, 2), nullptr)};
        const Reply<xcb_input_xi_query_device_reply_t> masters{xcb_input_xi_query_device_reply(
            c, xcb_input_xi_query_device(c, XCB_INPUT_DEVICE_ALL_MASTER), nullptr)};
        if (!version || !masters) {
            std::fputs("bench-floor: no XInput 2.2\n", stderr);
            std::exit(1);
        }
        for (auto it = xcb_input_xi_query_device_infos_iterator(masters.get()); it.rem > 0;
             xcb_input_xi_device_info_next(&it))
            grab(host, it.data->deviceid,
                 it.data->type == XCB_INPUT_DEVICE_TYPE_MASTER_POINTER ? pointerMask
                                                                       : keyboardMask);
    }

    void run() {
        pollfd readable{
            .fd = xcb_get_file_descriptor(host.connection), .events = POLLIN, .revents = 0};
        while (xcb_connection_has_error(host.connection) == 0) {
            while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(host.connection)})
                if ((event->response_type & 0x7F) == XCB_GE_GENERIC) take(*event);
            xcb_flush(target.connection);
            ::poll(&readable, 1, -1);
        }
    }

private:
    void take(const xcb_generic_event_t& event) {
        const auto& key = as<xcb_input_key_press_event_t>(event);
        switch (key.event_type) {
        case XCB_INPUT_KEY_PRESS: fake(XCB_KEY_PRESS, key.detail); break;
        case XCB_INPUT_KEY_RELEASE: fake(XCB_KEY_RELEASE, key.detail); break;
        case XCB_INPUT_BUTTON_PRESS: fake(XCB_BUTTON_PRESS, key.detail); break;
        case XCB_INPUT_BUTTON_RELEASE: fake(XCB_BUTTON_RELEASE, key.detail); break;
        case XCB_INPUT_RAW_MOTION: move(as<xcb_input_raw_motion_event_t>(event)); break;
        default: break;
        }
    }

    void move(const xcb_input_raw_motion_event_t& event) {
        // One function of xcb serves all raw events.
        const auto mask = *xcb_input_raw_button_press_valuator_mask(&event);
        const auto* value = xcb_input_raw_button_press_axisvalues(&event);
        std::array<std::int16_t, 2> whole{};
        for (unsigned axis = 0; axis < 2; ++axis) {
            if ((mask >> axis & 1U) == 0) continue;
            sums[axis] += (std::int64_t{value->integral} << 32) + value->frac;
            ++value;
            whole[axis] = static_cast<std::int16_t>(sums[axis] >> 32);
            sums[axis] -= std::int64_t{whole[axis]} << 32;
        }
        constexpr std::uint8_t relative = 1;
        if (whole[0] != 0 || whole[1] != 0) fake(XCB_MOTION_NOTIFY, relative, whole[0], whole[1]);
    }

    void fake(std::uint8_t type, std::uint32_t detail, std::int16_t x = 0, std::int16_t y = 0) {
        xcb_test_fake_input(target.connection, type, static_cast<std::uint8_t>(detail),
                            XCB_CURRENT_TIME, XCB_NONE, x, y, 0);
    }

    Server host, target;
    std::array<std::int64_t, 2> sums{}; // in units of 2^-32 pixel
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: bench-floor HOST-DISPLAY TARGET-DISPLAY\n", stderr);
        return 2;
    }
    Floor floor{argv[1], argv[2]};
    std::puts("ready");
    std::fflush(stdout);
    floor.run();
}
