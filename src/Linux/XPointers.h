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

    /// Absolute devices span the root window, which has this size from now on.
    void resize(std::uint16_t width, std::uint16_t height) { rootSize = {width, height}; }

    Masters masters() const { return pair; }

    /// The motion of a raw event; none when it holds none (scrolling). Only the pointer itself can
    /// tell it where `needsPointer` says so. To be called for every raw motion, or the next
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
        double units = 0; // from one end to the other; 0 without a range, it counts in pixels then
        std::optional<std::int64_t> last; // absolute only; none before its first event
    };
    struct Device {
        std::array<Axis, 2> axes;
        bool isXTest = false;
    };

    static Device device(const xcb_input_xi_device_info_t& info);
    void keepPositions(const std::map<DeviceId, Device>& before);

    Masters pair;
    std::map<DeviceId, Device> devices;
    std::array<std::uint16_t, 2> rootSize{};
};

} // namespace quenthisar
