// SPDX-License-Identifier: MIT
#include "linux/Onlooker.h"

#include <xcb/xinput.h>

namespace quenthisar::test {

namespace {

constexpr std::uint32_t windowEvents =
    XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE |
    XCB_INPUT_XI_EVENT_MASK_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_BUTTON_RELEASE |
    XCB_INPUT_XI_EVENT_MASK_MOTION | XCB_INPUT_XI_EVENT_MASK_ENTER | XCB_INPUT_XI_EVENT_MASK_LEAVE |
    XCB_INPUT_XI_EVENT_MASK_FOCUS_IN | XCB_INPUT_XI_EVENT_MASK_FOCUS_OUT;
constexpr std::uint32_t rawEvents = XCB_INPUT_XI_EVENT_MASK_RAW_MOTION;

} // namespace

Onlooker::Onlooker(xcb_window_t window) {
    auto* c = connection->get();
    opcode = connection->extension(xcb_input_id)->major_opcode;
    const XOwned<xcb_input_xi_query_version_reply_t> version{
        xcb_input_xi_query_version_reply(c, xcb_input_xi_query_version(c, 2, 2), nullptr)};
    const bool isRaw = window == XCB_WINDOW_NONE;
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const request{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, isRaw ? rawEvents : windowEvents};
    xcb_input_xi_select_events(c, isRaw ? connection->root() : window, 1, &request.head);
    seen();
}

std::vector<int> Onlooker::seen() {
    auto* c = connection->get();
    const XOwned<xcb_get_input_focus_reply_t> sync{
        xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)};
    std::vector<int> types;
    for (XOwned<xcb_generic_event_t> event{xcb_poll_for_event(c)}; event;
         event.reset(xcb_poll_for_event(c))) {
        if ((event->response_type & 0x7F) != XCB_GE_GENERIC) continue;
        const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(*event);
        if (generic.extension != opcode) continue;
        types.push_back(generic.event_type);
        if (generic.event_type != XCB_INPUT_RAW_MOTION) continue;
        const auto& raw = reinterpret_cast<const xcb_input_raw_motion_event_t&>(*event);
        if (raw.valuators_len == 0) continue;
        const auto mask = *xcb_input_raw_button_press_valuator_mask(&raw);
        const auto* value = xcb_input_raw_button_press_axisvalues(&raw);
        for (unsigned axis = 0; axis < 2; ++axis) {
            if (!(mask & 1U << axis)) continue;
            (axis == 0 ? sum.x : sum.y) += value->integral * finePerPixel + value->frac;
            ++value;
        }
    }
    return types;
}

} // namespace quenthisar::test
