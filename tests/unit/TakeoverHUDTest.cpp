// SPDX-License-Identifier: MIT
#include "UI/TakeoverHUD.h"

#include "support/FakeDisplays.h"
#include "support/FakeShell.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

TEST(TakeoverHUD, StaysInsideItsDisplay) {
    struct Row {
        std::vector<Rect> displays; // in global display coordinates
        std::optional<Point> anchor;
        Point origin;
    };
    const Rect full{0, 0, 1920, 1080}, right{1920, 0, 800, 600}, tiny{0, 0, 310, 100};
    for (const auto& [displays, anchor, origin] :
         {Row{{full}, Point{1800, 540}, {1608, 495}}, Row{{full}, Point{0, 0}, {12, 12}},
          Row{{{0, 0, 1440, 900}}, std::nullopt, {570, 710}},
          // The last point of one display is the first of the next.
          Row{{full, right}, Point{1920, 700}, {1932, 655}},
          Row{{full, right}, Point{2720, 0}, {1608, 12}}, // on none
          Row{{tiny}, Point{155, 50}, {-2, -2}}, Row{{}, Point{5, 5}, {-312, -102}}}) {
        VirtualClock clock;
        FakeDisplays all;
        for (const auto& frame : displays) all.add("D", frame);
        FakePanels panels{clock};
        TakeoverHUD hud{clock, all, panels};
        hud.show({"Desk"}, anchor, Seconds{2.6});
        const auto& panel = *panels.made.front();
        EXPECT_EQ(panel.origin, origin) << origin.x;
        EXPECT_EQ(panel.askedOn.x > 1920, origin.x > 1920) << "fitted to the display it goes to";
    }
}

} // namespace
} // namespace quenthisar
