// SPDX-License-Identifier: MIT
#pragma once

#include "Model/Edge.h"
#include "Platform/Displays.h"
#include "Support/Geometry.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quenthisar {

/// One display of the host.
struct ScreenInfo {
    std::uint32_t displayID = 0;
    std::string uuid; // persistent; the decimal `displayID` where the platform has none
    std::string name;
    /// In global display coordinates: origin at the top-left of the primary display, y downwards,
    /// in points. Edges: top is minY, bottom maxY, left minX, right maxX.
    Rect cgFrame;

    bool operator==(const ScreenInfo&) const = default;
};

/// A closed interval along an edge, in global display coordinates: along y for left and right,
/// along x for top and bottom.
struct Segment {
    double lower = 0, upper = 0;

    constexpr bool contains(double position) const {
        return lower <= position && position <= upper;
    }
    bool operator==(const Segment&) const = default;
};

/// Stateless geometry of the displays.
namespace ScreenLayout {

/// The displays of this moment, primary first. Main thread.
std::vector<ScreenInfo> current(Displays& displays);

/// The stretches of an edge that no neighbour of `all` touches: ascending, disjoint, each at least
/// 8 points long. Linear in the number of displays plus a sort of the neighbours.
std::vector<Segment> exposedSegments(const ScreenInfo& screen, Edge edge,
                                     const std::vector<ScreenInfo>& all);

} // namespace ScreenLayout
} // namespace quenthisar
