// SPDX-License-Identifier: MIT
#include "Geometry/ScreenLayout.h"
#include "support/FakeDisplays.h"

#include <gtest/gtest.h>

namespace quenthisar {

void PrintTo(const Segment& segment, std::ostream* out) {
    *out << '[' << segment.lower << ", " << segment.upper << ']';
}

namespace {

using Segments = std::vector<Segment>;

ScreenInfo screen(const std::string& uuid, const Rect& frame) {
    return {.displayID = 1, .uuid = uuid, .name = uuid, .cgFrame = frame};
}

/// What is exposed of the right edge of a display [0, 1000] high, next to `neighbours`.
Segments exposedRight(const std::vector<Rect>& neighbours, double height = 1000) {
    std::vector<ScreenInfo> all{screen("A", {0, 0, 500, height})};
    for (const auto& frame : neighbours)
        all.push_back(screen("N" + std::to_string(all.size()), frame));
    return ScreenLayout::exposedSegments(all.front(), Edge::right, all);
}

Rect rightNeighbour(double lower, double upper, double distance = 0) {
    return {500 + distance, lower, 300, upper - lower};
}

TEST(ScreenLayout, ListsDisplaysInGlobalCoordinates) {
    FakeDisplays displays;
    displays.list = {{.screenNumber = 1, .frame = {0, 0, 2560, 1440}, .localizedName = "Main"},
                     {.screenNumber = std::nullopt, .frame = {}, .localizedName = "No number"},
                     {.screenNumber = 7, .frame = {0, 1440, 1920, 1080}, .localizedName = "Above"}};
    displays.uuids = {{1, "D1"}};
    EXPECT_EQ(ScreenLayout::current(displays),
              (std::vector<ScreenInfo>{{1, "D1", "Main", {0, 0, 2560, 1440}},
                                       {7, "7", "Above", {0, -1080, 1920, 1080}}}));
    displays.list.clear();
    EXPECT_TRUE(ScreenLayout::current(displays).empty());
}

TEST(ScreenLayout, NeighboursCoverWhatTheyTouch) {
    const std::vector<ScreenInfo> all{screen("A", {0, 0, 1440, 900}),
                                      screen("B", {1440, 0, 1920, 1080})};
    const auto exposed = [&](std::size_t which, Edge edge) {
        return ScreenLayout::exposedSegments(all[which], edge, all);
    };
    EXPECT_EQ(exposed(0, Edge::right), Segments{});
    EXPECT_EQ(exposed(1, Edge::left), (Segments{{900, 1080}}));
    EXPECT_EQ(exposed(0, Edge::left), (Segments{{0, 900}}));
    EXPECT_EQ(exposed(0, Edge::top), (Segments{{0, 1440}}));
    EXPECT_EQ(exposed(0, Edge::bottom), (Segments{{0, 1440}}));
}

TEST(ScreenLayout, EachEdgeLooksAtTheFacingSide) {
    const std::vector<ScreenInfo> all{
        screen("A", {0, 0, 100, 100}), screen("above", {0, -100, 50, 100}),
        screen("below", {0, 100, 60, 100}), screen("left", {-100, 0, 100, 70}),
        screen("right", {100, 0, 100, 80})};
    const auto exposed = [&](Edge edge) {
        return ScreenLayout::exposedSegments(all.front(), edge, all);
    };
    EXPECT_EQ(exposed(Edge::top), (Segments{{50, 100}}));
    EXPECT_EQ(exposed(Edge::bottom), (Segments{{60, 100}}));
    EXPECT_EQ(exposed(Edge::left), (Segments{{70, 100}}));
    EXPECT_EQ(exposed(Edge::right), (Segments{{80, 100}}));
}

TEST(ScreenLayout, TouchesUpToOnePointAway) {
    for (const double distance : {-1.0, 0.0, 1.0})
        EXPECT_EQ(exposedRight({rightNeighbour(0, 1000, distance)}), Segments{}) << distance;
    for (const double distance : {-1.5, 1.5})
        EXPECT_EQ(exposedRight({rightNeighbour(0, 1000, distance)}), (Segments{{0, 1000}}))
            << distance;
}

TEST(ScreenLayout, AnOverlapOfOnePointCoversNothing) {
    EXPECT_EQ(exposedRight({rightNeighbour(-500, 1)}), (Segments{{0, 1000}}));
    EXPECT_EQ(exposedRight({rightNeighbour(-500, 1.5)}), (Segments{{1.5, 1000}}));
}

TEST(ScreenLayout, StretchesUnderEightPointsAreNotExposed) {
    EXPECT_EQ(exposedRight({rightNeighbour(8, 992)}), (Segments{{0, 8}, {992, 1000}}));
    EXPECT_EQ(exposedRight({rightNeighbour(7.9, 992.1)}), Segments{});
    EXPECT_EQ(exposedRight({rightNeighbour(0, 400), rightNeighbour(404, 1000)}), Segments{});
    EXPECT_EQ(exposedRight({}, 7.9), Segments{});
}

TEST(ScreenLayout, OverlappingAndNestedNeighboursInAnyOrder) {
    EXPECT_EQ(exposedRight({rightNeighbour(300, 700), rightNeighbour(0, 500)}),
              (Segments{{700, 1000}}));
    EXPECT_EQ(exposedRight({rightNeighbour(100, 800), rightNeighbour(200, 300)}),
              (Segments{{0, 100}, {800, 1000}}));
}

TEST(ScreenLayout, DisplaysWithOneUuidDontCoverEachOther) {
    const std::vector<ScreenInfo> all{screen("A", {0, 0, 500, 500}),
                                      screen("A", {500, 0, 500, 500})};
    EXPECT_EQ(ScreenLayout::exposedSegments(all[0], Edge::right, all), (Segments{{0, 500}}));
}

} // namespace
} // namespace quenthisar
