// SPDX-License-Identifier: MIT
#include "Geometry/ScreenLayout.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using Segments = std::vector<Segment>;

/// What is exposed of a display A of 500 x 1000 at the origin next to `neighbours`.
Segments exposed(Edge edge, const std::vector<Rect>& neighbours) {
    std::vector<ScreenInfo> all{{1, "A", "", {0, 0, 500, 1000}}};
    for (const auto& frame : neighbours)
        all.push_back({1, "N" + std::to_string(all.size()), "", frame});
    return ScreenLayout::exposedSegments(all.front(), edge, all);
}

Rect rightNeighbour(double lower, double upper, double distance = 0) {
    return {500 + distance, lower, 300, upper - lower};
}

TEST(ScreenLayout, EachEdgeLooksAtTheFacingSide) {
    const std::vector<Rect> around{
        {0, -100, 50, 100}, {0, 1000, 60, 100}, {-100, 0, 100, 70}, {500, 0, 100, 80}};
    EXPECT_EQ(exposed(Edge::top, around), (Segments{{50, 500}}));
    EXPECT_EQ(exposed(Edge::bottom, around), (Segments{{60, 500}}));
    EXPECT_EQ(exposed(Edge::left, around), (Segments{{70, 1000}}));
    EXPECT_EQ(exposed(Edge::right, around), (Segments{{80, 1000}}));
}

TEST(ScreenLayout, NeighboursCoverWhatTheyTouchButForTheNarrowest) {
    struct Row {
        std::vector<Rect> neighbours;
        Segments exposed;
    };
    const Segments nothing, all{{0, 1000}};
    for (const auto& [neighbours, expected] :
         {Row{{rightNeighbour(0, 1000, -1)}, nothing}, Row{{rightNeighbour(0, 1000, 1)}, nothing},
          Row{{rightNeighbour(0, 1000, -1.5)}, all}, Row{{rightNeighbour(0, 1000, 1.5)}, all},
          Row{{rightNeighbour(-500, 1)}, all}, Row{{rightNeighbour(-500, 1.5)}, {{1.5, 1000}}},
          Row{{rightNeighbour(8, 992)}, {{0, 8}, {992, 1000}}},
          Row{{rightNeighbour(7.9, 992.1)}, nothing},
          Row{{rightNeighbour(0, 400), rightNeighbour(404, 1000)}, nothing},
          Row{{rightNeighbour(300, 700), rightNeighbour(0, 500)}, {{700, 1000}}},
          Row{{rightNeighbour(100, 800), rightNeighbour(200, 300)}, {{0, 100}, {800, 1000}}}})
        EXPECT_EQ(exposed(Edge::right, neighbours), expected)
            << testing::PrintToString(neighbours.size()) << " from " << neighbours[0].y;
}

} // namespace
} // namespace quenthisar
