// SPDX-License-Identifier: MIT
#include "Geometry/ScreenLayout.h"

#include <algorithm>
#include <cmath>

namespace quenthisar::ScreenLayout {

namespace {

constexpr double touchingDistance = 1.0;
constexpr double overlapThatCovers = 1.0;
constexpr double minimumExposedLength = 8.0;

/// The extent of a frame along an edge.
Segment extent(const Rect& frame, Edge edge) {
    switch (edge) {
    case Edge::top:
    case Edge::bottom: return {frame.minX(), frame.maxX()};
    case Edge::left:
    case Edge::right: return {frame.minY(), frame.maxY()};
    }
    return {};
}

/// How far `other`'s facing side is from the edge of `frame`.
double distance(const Rect& frame, Edge edge, const Rect& other) {
    switch (edge) {
    case Edge::top: return std::abs(other.maxY() - frame.minY());
    case Edge::bottom: return std::abs(other.minY() - frame.maxY());
    case Edge::left: return std::abs(other.maxX() - frame.minX());
    case Edge::right: return std::abs(other.minX() - frame.maxX());
    }
    return 0;
}

std::vector<Segment> gaps(const Segment& in, std::vector<Segment> covered, double minimumLength) {
    for (auto& segment : covered)
        segment = {std::max(in.lower, segment.lower), std::min(in.upper, segment.upper)};
    std::erase_if(covered, [](const Segment& s) { return s.lower >= s.upper; });
    std::ranges::stable_sort(covered, {}, &Segment::lower);

    std::vector<Segment> result;
    double cursor = in.lower;
    for (const auto& segment : covered) {
        if (segment.lower - cursor >= minimumLength) result.push_back({cursor, segment.lower});
        cursor = std::max(cursor, segment.upper);
    }
    if (in.upper - cursor >= minimumLength) result.push_back({cursor, in.upper});
    return result;
}

} // namespace

std::vector<ScreenInfo> current(Displays& displays) {
    const auto screens = displays.screens();
    std::vector<ScreenInfo> result;
    if (screens.empty()) return result;
    const double primaryHeight = screens.front().frame.height;
    for (const auto& screen : screens) {
        if (!screen.screenNumber) continue;
        const auto displayID = *screen.screenNumber;
        const Rect& f = screen.frame;
        result.push_back(
            {.displayID = displayID,
             .uuid = displays.displayUUID(displayID).value_or(std::to_string(displayID)),
             .name = screen.localizedName,
             .cgFrame = {f.x, primaryHeight - f.y - f.height, f.width, f.height}});
    }
    return result;
}

std::vector<Segment> exposedSegments(const ScreenInfo& screen, Edge edge,
                                     const std::vector<ScreenInfo>& all) {
    const Segment whole = extent(screen.cgFrame, edge);
    std::vector<Segment> covered;
    for (const auto& other : all) {
        if (other.uuid == screen.uuid) continue;
        if (distance(screen.cgFrame, edge, other.cgFrame) > touchingDistance) continue;
        const Segment side = extent(other.cgFrame, edge);
        const Segment overlap{std::max(whole.lower, side.lower), std::min(whole.upper, side.upper)};
        if (overlap.lower + overlapThatCovers < overlap.upper) covered.push_back(overlap);
    }
    return gaps(whole, std::move(covered), minimumExposedLength);
}

} // namespace quenthisar::ScreenLayout
