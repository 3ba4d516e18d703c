// SPDX-License-Identifier: MIT
#pragma once

#include "Geometry/ScreenLayout.h"
#include "UI/Palette.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quenthisar {

/// A display as the map draws it.
struct ScreenTile {
    std::string name;
    bool selected = false;

    bool operator==(const ScreenTile&) const = default;
};

/// A miniature of the displays as they are arranged, with bars along their bound edges. In points
/// of the view, y downwards, as display coordinates are.
struct ScreenMapView {
    std::vector<ScreenInfo> screens;
    std::optional<std::string> selectedUUID;
    /// None draws no bars.
    std::function<std::optional<NamedColor>(const ScreenInfo&, Edge)> edgeColor;
    std::function<void(const std::string& uuid)> onSelect;
    /// Bars along whole edges instead of their exposed stretches.
    bool allowSharedEdges = false;
    double barThickness = 4;

    /// The smallest rectangle that holds every display; a unit square if there is none.
    Rect unionBounds() const;

    /// Where each display goes in a map of this size, in the order of `screens`.
    std::vector<Rect> tileRects(double width, double height) const;

    /// The bars along an edge whose display is drawn in `tile`; whether it is bound is not asked.
    std::vector<Rect> barRects(const ScreenInfo& screen, Edge edge, const Rect& tile) const;

    /// The display that lies next to `screens[of]` in a direction: near comes before straight
    /// ahead.
    std::optional<std::size_t> neighbour(std::size_t of, Edge towards) const;
};

} // namespace quenthisar
