// SPDX-License-Identifier: MIT
#include "Linux/XPointers.h"

#include <cmath>
#include <utility>

namespace quenthisar {

namespace {

constexpr std::int64_t fine(const xcb_input_fp3232_t& value) {
    return (std::int64_t{value.integral} * finePerPixel) + value.frac;
}

/// Marks the server's own device for synthetic input.
constexpr std::string_view xtestProperty = "XTEST Device";

} // namespace

void XPointers::read(const XConnection& connection) {
    auto* c = connection.get();
    const auto mastersCookie = xcb_input_xi_get_client_pointer(c, XCB_WINDOW_NONE);
    const auto devicesCookie = xcb_input_xi_query_device(c, XCB_INPUT_DEVICE_ALL);
    const XOwned<xcb_input_xi_get_client_pointer_reply_t> chosen{
        xcb_input_xi_get_client_pointer_reply(c, mastersCookie, nullptr)};
    const XOwned<xcb_input_xi_query_device_reply_t> list{
        xcb_input_xi_query_device_reply(c, devicesCookie, nullptr)};
    if (!list) return;
    const auto root = connection.rootSize();
    resize(root.width, root.height);
    const auto xtest = connection.atom(xtestProperty);

    const auto before = std::exchange(devices, {});
    pair = {};
    for (auto it = xcb_input_xi_query_device_infos_iterator(list.get()); it.rem > 0;
         xcb_input_xi_device_info_next(&it)) {
        const auto& info = *it.data;
        if (info.type == XCB_INPUT_DEVICE_TYPE_MASTER_POINTER) {
            const bool isChosen = chosen && chosen->set && chosen->deviceid == info.deviceid;
            if (isChosen || pair.pointer == 0) pair = {info.deviceid, info.attachment};
        }
        if (info.type != XCB_INPUT_DEVICE_TYPE_SLAVE_POINTER || !info.enabled) continue;
        auto& entry = devices[info.deviceid] = device(info);
        if (xtest == XCB_ATOM_NONE) continue;
        const auto cookie =
            xcb_input_xi_get_property(c, info.deviceid, false, xtest, XCB_ATOM_INTEGER, 0, 1);
        const XOwned<xcb_input_xi_get_property_reply_t> property{
            xcb_input_xi_get_property_reply(c, cookie, nullptr)};
        entry.isXTest = property && property->num_items > 0;
    }
    if (!before.empty()) keepPositions(before);
}

/// What the server says of them may be later than events that are still to come. A device that is
/// new says where it is with its first event; until then the server has made something up.
void XPointers::keepPositions(const std::map<DeviceId, Device>& before) {
    for (auto& [id, device] : devices) {
        const auto known = before.find(id);
        for (unsigned number = 0; number < device.axes.size(); ++number) {
            auto& axis = device.axes[number];
            const auto* old = known != before.end() ? &known->second.axes[number] : nullptr;
            axis.last = old && old->units == axis.units ? old->last : std::nullopt;
        }
    }
}

XPointers::Device XPointers::device(const xcb_input_xi_device_info_t& info) {
    Device result;
    for (auto it = xcb_input_xi_device_info_classes_iterator(&info); it.rem > 0;
         xcb_input_device_class_next(&it)) {
        if (it.data->type != XCB_INPUT_DEVICE_CLASS_TYPE_VALUATOR) continue;
        const auto& valuator = *reinterpret_cast<const xcb_input_valuator_class_t*>(it.data);
        if (valuator.number > 1) continue;
        auto& axis = result.axes[valuator.number];
        axis.absolute = valuator.mode == XCB_INPUT_VALUATOR_MODE_ABSOLUTE;
        axis.last = fine(valuator.value);
        if (valuator.max.integral > valuator.min.integral)
            axis.units = double(valuator.max.integral) - valuator.min.integral + 1;
    }
    return result;
}

XPointers::Values XPointers::values(const xcb_input_raw_motion_event_t& event) {
    Values result;
    if (event.valuators_len == 0) return result;
    // One function of xcb serves all raw events.
    const auto mask = *xcb_input_raw_button_press_valuator_mask(&event);
    const auto* value = xcb_input_raw_button_press_axisvalues(&event);
    for (unsigned axis = 0; axis < result.axis.size(); ++axis)
        if (mask & 1U << axis) result.axis[axis] = fine(*value++);
    return result;
}

std::optional<FineMotion> XPointers::motion(const xcb_input_raw_motion_event_t& event) {
    const auto now = values(event);
    if (!now.axis[0] && !now.axis[1]) return std::nullopt;
    auto it = devices.find(event.sourceid);
    if (it == devices.end()) it = devices.emplace(event.sourceid, Device{}).first;
    std::array<std::int64_t, 2> moved{};
    for (unsigned number = 0; number < moved.size(); ++number) {
        if (!now.axis[number]) continue;
        auto& axis = it->second.axes[number];
        if (!axis.absolute) {
            moved[number] = *now.axis[number];
            continue;
        }
        const auto last = axis.last.value_or(*now.axis[number]);
        const auto units = static_cast<double>(*now.axis[number] - last);
        const double pixelsPerUnit = axis.units > 0 ? rootSize[number] / axis.units : 1;
        moved[number] = std::llround(units * pixelsPerUnit);
        axis.last = *now.axis[number];
    }
    return FineMotion{moved[0], moved[1]};
}

bool XPointers::needsPointer(const xcb_input_raw_motion_event_t& event) const {
    const auto it = devices.find(event.sourceid);
    return it != devices.end() && it->second.isXTest;
}

} // namespace quenthisar
