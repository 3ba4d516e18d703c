// SPDX-License-Identifier: MIT
#include "UI/ScreenMapView.h"

#include <algorithm>
#include <cmath>

namespace quenthisar {

namespace {

/// Of the map, what the displays fill.
constexpr double filled = 0.88;
/// Around each tile.
constexpr double inset = 3;
/// A tile that the inset would swallow keeps this much, so that it can be seen and hit.
constexpr double leastSide = 2;

struct Span {
    double start, length;
};

Span insetSpan(double start, double length) {
    const double left = std::max(length - 2 * inset, std::min(length, leastSide));
    return {start + (length - left) / 2, left};
}

/// How far one interval lies before the other; 0 if they overlap.
double gap(double lowerA, double upperA, double lowerB, double upperB) {
    return std::max({0.0, lowerB - upperA, lowerA - upperB});
}

/// Where one display lies as seen from another in a direction.
struct Sighting {
    double ahead, across; // from centre to centre
    double distance;      // between the nearest sides
    double aside;         // by how much it is missed going straight ahead
};

Sighting sighting(const Rect& from, const Rect& to, Edge towards) {
    const double dx = to.minX() + to.width / 2 - from.minX() - from.width / 2;
    const double dy = to.minY() + to.height / 2 - from.minY() - from.height / 2;
    const double gapX = gap(from.minX(), from.maxX(), to.minX(), to.maxX());
    const double gapY = gap(from.minY(), from.maxY(), to.minY(), to.maxY());
    switch (towards) {
    case Edge::top: return {-dy, dx, gapY, gapX};
    case Edge::bottom: return {dy, dx, gapY, gapX};
    case Edge::left: return {-dx, dy, gapX, gapY};
    case Edge::right: return {dx, dy, gapX, gapY};
    }
    return {};
}

} // namespace

Rect ScreenMapView::unionBounds() const {
    if (screens.empty()) return {0, 0, 1, 1};
    const Rect& first = screens.front().cgFrame;
    double minX = first.minX(), minY = first.minY(), maxX = first.maxX(), maxY = first.maxY();
    for (const auto& [displayID, uuid, name, frame] : screens) {
        minX = std::min(minX, frame.minX());
        minY = std::min(minY, frame.minY());
        maxX = std::max(maxX, frame.maxX());
        maxY = std::max(maxY, frame.maxY());
    }
    return {minX, minY, maxX - minX, maxY - minY};
}

std::vector<Rect> ScreenMapView::tileRects(double width, double height) const {
    const Rect bounds = unionBounds();
    const bool isFlat = bounds.width <= 0 || bounds.height <= 0;
    const double scale =
        isFlat ? 1 : std::min(width / bounds.width, height / bounds.height) * filled;
    const double offsetX = (width - bounds.width * scale) / 2;
    const double offsetY = (height - bounds.height * scale) / 2;

    std::vector<Rect> tiles;
    for (const auto& screen : screens) {
        const Rect& frame = screen.cgFrame;
        const auto x =
            insetSpan((frame.minX() - bounds.minX()) * scale + offsetX, frame.width * scale);
        const auto y =
            insetSpan((frame.minY() - bounds.minY()) * scale + offsetY, frame.height * scale);
        tiles.push_back({x.start, y.start, x.length, y.length});
    }
    return tiles;
}

std::vector<Rect> ScreenMapView::barRects(const ScreenInfo& screen, Edge edge,
                                          const Rect& tile) const {
    const Rect& frame = screen.cgFrame;
    if (frame.width <= 0 || frame.height <= 0) return {};
    const bool isUpright = edge == Edge::left || edge == Edge::right;
    const Segment whole =
        isUpright ? Segment{frame.minY(), frame.maxY()} : Segment{frame.minX(), frame.maxX()};
    const auto segments = allowSharedEdges ? std::vector{whole}
                                           : ScreenLayout::exposedSegments(screen, edge, screens);

    const double scale = isUpright ? tile.height / frame.height : tile.width / frame.width;
    std::vector<Rect> bars;
    for (const auto& segment : segments) {
        const double start = (segment.lower - whole.lower) * scale;
        const double length = (segment.upper - segment.lower) * scale;
        switch (edge) {
        case Edge::top:
            bars.push_back({tile.minX() + start, tile.minY(), length, barThickness});
            break;
        case Edge::bottom:
            bars.push_back({tile.minX() + start, tile.maxY() - barThickness, length, barThickness});
            break;
        case Edge::left:
            bars.push_back({tile.minX(), tile.minY() + start, barThickness, length});
            break;
        case Edge::right:
            bars.push_back({tile.maxX() - barThickness, tile.minY() + start, barThickness, length});
            break;
        }
    }
    return bars;
}

std::optional<std::size_t> ScreenMapView::neighbour(std::size_t of, Edge towards) const {
    std::optional<std::size_t> best;
    double bestCost = 0;
    for (std::size_t other = 0; other < screens.size(); ++other) {
        const auto [ahead, across, distance, aside] =
            sighting(screens[of].cgFrame, screens[other].cgFrame, towards);
        if (ahead <= 0) continue;
        // What lies straight ahead comes first; the centres decide between equals.
        const double cost = distance + 2 * aside + (ahead + std::abs(across)) / 1000;
        if (best && bestCost <= cost) continue;
        best = other;
        bestCost = cost;
    }
    return best;
}

} // namespace quenthisar
