// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/MotionPacer.h"
#include "Linux/XConnection.h"

#include <xcb/xinput.h>

#include <array>
#include <map>
#include <optional>

namespace quenthisar {

/// The pointing devices of the session, and the motion that their raw events hold.
class XPointers {
public:
    using DeviceId = xcb_input_device_id_t;

    /// The two devices that all others feed, as X pairs them.
    struct Masters {
        DeviceId pointer = 0, keyboard = 0;
    };

    /// Reads the devices anew. Without effect when the connection is lost.
    void read(const XConnection& connection);

    Masters masters() const { return pair; }

    /// The motion of a raw event; none when it moves nothing (scrolling), or when only the pointer
    /// itself can tell (`needsPointer`). To be called for every raw motion, or the first
    /// difference of an absolute device is wrong.
    std::optional<FineMotion> motion(const xcb_input_raw_motion_event_t& event);

    /// Events of the XTest device hold positions or distances and don't say which.
    bool needsPointer(const xcb_input_raw_motion_event_t& event) const;

    /// The values of axes 0 and 1 in an event.
    struct Values {
        std::array<std::optional<std::int64_t>, 2> axis; // in units of 2^-32
    };
    static Values values(const xcb_input_raw_motion_event_t& event);

private:
    struct Axis {
        bool absolute = false;
        double pixelsPerUnit = 1;
        std::int64_t last = 0; // absolute only
    };
    struct Device {
        std::array<Axis, 2> axes;
        bool isXTest = false;
    };

    Device device(const xcb_input_xi_device_info_t& info, const xcb_rectangle_t& root) const;

    Masters pair;
    std::map<DeviceId, Device> devices;
};

} // namespace quenthisar
