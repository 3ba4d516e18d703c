// SPDX-License-Identifier: MIT
#include "UI/ScreenMapView.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using Rects = std::vector<Rect>;

ScreenMapView mapOf(const Rects& frames) {
    ScreenMapView map;
    for (const auto& frame : frames)
        map.screens.push_back({1, "D" + std::to_string(map.screens.size()), "", frame});
    return map;
}

TEST(ScreenMapView, EveryTileCanBeSeenAndHit) {
    Rects row;
    for (int i = 0; i < 50; ++i) row.push_back({i * 1920.0 - 5000, 0, 1920, 1080});
    double end = 0;
    for (const auto& tile : mapOf(row).tileRects(448, 160)) {
        EXPECT_GE(tile.width, 2);
        EXPECT_GE(tile.height, 2);
        EXPECT_GE(tile.minX(), end);
        EXPECT_NEAR(tile.minY() + tile.height / 2, 80, 0.01);
        end = tile.maxX();
    }
    EXPECT_LE(end, 448);
    EXPECT_EQ(mapOf({}).tileRects(448, 160), Rects{});
}

TEST(ScreenMapView, BarsCoverTheExposedStretches) {
    // A display above covers the middle of the top, one on the right the whole side but 80.
    auto map = mapOf({{100, 100, 1000, 400}, {500, -200, 200, 300}, {1100, 180, 500, 500}});
    const Rect tile{10, 20, 100, 40};
    const auto bars = [&](Edge edge) { return map.barRects(map.screens[0], edge, tile); };
    EXPECT_EQ(bars(Edge::top), (Rects{{10, 20, 40, 4}, {70, 20, 40, 4}}));
    EXPECT_EQ(bars(Edge::bottom), (Rects{{10, 56, 100, 4}}));
    EXPECT_EQ(bars(Edge::left), (Rects{{10, 20, 4, 40}}));
    EXPECT_EQ(bars(Edge::right), (Rects{{106, 20, 4, 8}}));
    map.allowSharedEdges = true;
    EXPECT_EQ(bars(Edge::right), (Rects{{106, 20, 4, 40}}));
}

} // namespace
} // namespace quenthisar
