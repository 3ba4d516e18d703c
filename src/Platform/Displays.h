// SPDX-License-Identifier: MIT
#pragma once

#include "Support/Geometry.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quenthisar {

/// A display as the application framework lists it.
struct Screen {
    std::optional<std::uint32_t> screenNumber;
    Rect frame{}; // origin at the bottom-left of the primary display, y upwards, in points
    std::string localizedName{};
};

/// The display services. Main thread.
class Displays {
public:
    virtual ~Displays() = default;

    /// The displays, primary first; the same from one change that is told of to the next.
    virtual std::vector<Screen> screens() = 0;

    /// The persistent UUID of a display in text form, or none.
    virtual std::optional<std::string> displayUUID(std::uint32_t displayID) = 0;

    /// Calls `handler` after each change of the display configuration. One handler at a time.
    virtual void onChange(std::function<void()> handler) = 0;
};

} // namespace quenthisar
