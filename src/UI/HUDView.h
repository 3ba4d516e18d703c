// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Panels.h"
#include "UI/Palette.h"

#include <memory>
#include <string>

namespace quenthisar {

/// What the panel of a takeover shows: a dot in the dongle's colour, and the target's name.
struct HUDView {
    std::string target; // UTF-8
    NamedColor color{};

    bool operator==(const HUDView&) const = default;
};

/// Makes panels. Main thread.
class HUDPanels {
public:
    virtual ~HUDPanels() = default;

    /// A panel around `view`, not on screen yet.
    virtual std::shared_ptr<Panel> create(const HUDView& view) = 0;
};

} // namespace quenthisar
