// SPDX-License-Identifier: MIT
#include "UI/ScreenMapView.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace quenthisar {

void PrintTo(const Rect& rect, std::ostream* out) {
    *out << '(' << rect.x << ", " << rect.y << "; " << rect.width << " x " << rect.height << ')';
}

namespace {

using Rects = std::vector<Rect>;

ScreenMapView mapOf(const Rects& frames) {
    ScreenMapView map;
    for (const auto& frame : frames) {
        const auto number = static_cast<std::uint32_t>(map.screens.size());
        map.screens.push_back({number, "D" + std::to_string(number), "Display", frame});
    }
    return map;
}

const Rect left{0, 0, 1920, 1080}, right{1920, 0, 1920, 1080};

TEST(ScreenMapView, HoldsEveryDisplay) {
    EXPECT_EQ(mapOf({}).unionBounds(), (Rect{0, 0, 1, 1}));
    EXPECT_EQ(mapOf({{10, 20, 30, 40}}).unionBounds(), (Rect{10, 20, 30, 40}));
    EXPECT_EQ(mapOf({left, {-1280, 200, 1280, 1024}, {0, -900, 1440, 900}}).unionBounds(),
              (Rect{-1280, -900, 3200, 2124}));
}

TEST(ScreenMapView, CentresTheDisplaysWithAMargin) {
    const auto tiles = mapOf({left, right}).tileRects(448, 160);
    ASSERT_EQ(tiles.size(), 2U);
    EXPECT_NEAR(tiles[0].minX(), 29.88, 0.005);
    EXPECT_NEAR(tiles[0].maxX(), 221.0, 0.005);
    EXPECT_NEAR(tiles[0].minY(), 27.56, 0.005);
    EXPECT_NEAR(tiles[0].maxY(), 132.44, 0.005);
    EXPECT_NEAR(tiles[1].minX(), 448 - 221.0, 0.005);
}

TEST(ScreenMapView, EveryTileCanBeSeenAndHit) {
    Rects row;
    for (int i = 0; i < 50; ++i) row.push_back({i * 1920.0, 0, 1920, 1080});
    double end = 0;
    for (const auto& tile : mapOf(row).tileRects(448, 160)) {
        EXPECT_GE(tile.width, 2);
        EXPECT_GE(tile.height, 2);
        EXPECT_GE(tile.minX(), end);
        end = tile.maxX();
    }
    EXPECT_LE(end, 448);
    // Displays without an extent: the unit scale, and nothing to see.
    EXPECT_EQ(mapOf({{5, 5, 0, 0}}).tileRects(448, 160), (Rects{{224, 80, 0, 0}}));
}

TEST(ScreenMapView, BarsCoverTheExposedStretches) {
    // A display above covers the left half of the top, one on the right the whole side but 80.
    auto map = mapOf({{100, 100, 1000, 400}, {0, -200, 600, 300}, {1100, 180, 500, 500}});
    const Rect tile{10, 20, 100, 40};
    const auto bars = [&](Edge edge) { return map.barRects(map.screens[0], edge, tile); };
    EXPECT_EQ(bars(Edge::top), (Rects{{60, 20, 50, 4}}));
    EXPECT_EQ(bars(Edge::bottom), (Rects{{10, 56, 100, 4}}));
    EXPECT_EQ(bars(Edge::left), (Rects{{10, 20, 4, 40}}));
    EXPECT_EQ(bars(Edge::right), (Rects{{106, 20, 4, 8}}));
    map.allowSharedEdges = true;
    EXPECT_EQ(bars(Edge::top), (Rects{{10, 20, 100, 4}}));
    EXPECT_EQ(bars(Edge::right), (Rects{{106, 20, 4, 40}}));

    map = mapOf({left, right});
    EXPECT_EQ(map.barRects(map.screens[0], Edge::right, tile), Rects{});
    map = mapOf({{0, 0, 0, 100}});
    EXPECT_EQ(map.barRects(map.screens[0], Edge::left, tile), Rects{});
}

TEST(ScreenMapView, BarsComeInTheOrderOfTheirStretches) {
    const auto map = mapOf({{0, 0, 1000, 500}, {400, -100, 200, 100}});
    EXPECT_EQ(map.barRects(map.screens[0], Edge::top, {0, 0, 100, 50}),
              (Rects{{0, 0, 40, 4}, {60, 0, 40, 4}}));
}

TEST(ScreenMapView, FindsTheDisplayNextToOne) {
    // 0 and 1 side by side, 2 above 1, 3 far to the right of 2 and a little higher.
    const auto map = mapOf({left, right, {1920, -1080, 1920, 1080}, {6000, -1400, 1920, 1080}});
    using Neighbour = std::optional<std::size_t>;
    EXPECT_EQ(map.neighbour(0, Edge::right), Neighbour{1});
    EXPECT_EQ(map.neighbour(1, Edge::left), Neighbour{0});
    EXPECT_EQ(map.neighbour(0, Edge::top), Neighbour{2});
    EXPECT_EQ(map.neighbour(1, Edge::top), Neighbour{2});
    EXPECT_EQ(map.neighbour(2, Edge::right), Neighbour{3});
    EXPECT_EQ(map.neighbour(2, Edge::bottom), Neighbour{1});
    EXPECT_EQ(map.neighbour(0, Edge::left), Neighbour{});
    EXPECT_EQ(map.neighbour(3, Edge::right), Neighbour{});
}

} // namespace
} // namespace quenthisar
