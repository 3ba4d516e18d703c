// SPDX-License-Identifier: MIT
#include "UI/TakeoverHUD.h"

#include "support/FakeDisplays.h"
#include "support/FakeShell.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;

struct Fixture {
    VirtualClock clock;
    FakeDisplays displays;
    FakePanels panels{clock};
    TakeoverHUD hud{clock, displays, panels};

    void show(std::optional<Point> at = std::nullopt) {
        hud.show({"Desk", NamedColor::teal}, at, 2600ms);
    }
    FakePanel& panel(std::size_t number) { return *panels.made.at(number); }
};

TEST(TakeoverHUD, FadesInAndGoesByItself) {
    Fixture f;
    f.show();
    ASSERT_EQ(f.panels.views, (std::vector<HUDView>{{"Desk", NamedColor::teal}}));
    EXPECT_EQ(f.panel(0).alpha, 0);
    EXPECT_TRUE(f.panel(0).isShown);
    f.clock.advance(200ms);
    EXPECT_EQ(f.panel(0).alpha, 1);
    f.clock.advance(2400ms);
    EXPECT_TRUE(f.panel(0).isShown);
    f.clock.advance(299ms);
    EXPECT_TRUE(f.panel(0).isShown) << "while it fades out";
    f.clock.advance(1ms);
    EXPECT_FALSE(f.panel(0).isShown);
    EXPECT_EQ(f.panel(0).alpha, 0);
    EXPECT_EQ(f.panel(0).fades, (std::vector<std::pair<double, Seconds>>{{1, 200ms}, {0, 300ms}}));
}

TEST(TakeoverHUD, IsReplacedAtOnceAndStaysForItsOwnTime) {
    Fixture f;
    f.show();
    f.clock.advance(1s);
    f.show();
    EXPECT_FALSE(f.panel(0).isShown);
    EXPECT_EQ(f.panel(0).fades.size(), 1U) << "no fade";
    f.clock.advance(2599ms);
    EXPECT_EQ(f.panel(1).fades.size(), 1U);
    f.clock.advance(1ms);
    EXPECT_EQ(f.panel(1).fades.size(), 2U);
}

TEST(TakeoverHUD, CountsAsHiddenWhileItFades) {
    Fixture f;
    f.show();
    f.hud.hide(true);
    f.hud.hide(false);
    EXPECT_TRUE(f.panel(0).isShown) << "the fade goes on";
    f.show();
    EXPECT_EQ(f.panels.shown(), 2);
    f.clock.advance(300ms);
    EXPECT_FALSE(f.panel(0).isShown);
    EXPECT_TRUE(f.panel(1).isShown);
    f.hud.hide(false);
    f.clock.advance(10s);
    EXPECT_EQ(f.panel(1).fades.size(), 1U) << "the automatic end was cancelled";
}

TEST(TakeoverHUD, LeavesNothingBehindThatCallsIt) {
    Fixture f;
    std::optional<TakeoverHUD> hud{std::in_place, f.clock, f.displays, f.panels};
    hud->show({}, std::nullopt, 1s);
    hud.reset();
    f.clock.advance(5s);
    EXPECT_EQ(f.panel(0).fades.size(), 1U) << "the automatic end";

    hud.emplace(f.clock, f.displays, f.panels);
    hud->show({}, std::nullopt, 1s);
    hud->hide(true);
    hud.reset();
    f.clock.advance(5s);
    EXPECT_TRUE(f.panel(1).isShown) << "the end of the fade";
}

struct Place {
    const char* name;
    std::vector<Rect> displays; // in global display coordinates
    std::optional<Point> anchor;
    Point origin;
};

class PlaceOfTheHUD : public testing::TestWithParam<Place> {};

TEST_P(PlaceOfTheHUD, IsOnItsDisplay) {
    Fixture f;
    for (const auto& frame : GetParam().displays) f.displays.add("D", frame);
    f.show(GetParam().anchor);
    EXPECT_EQ(f.panel(0).origin, GetParam().origin);
}

const Rect full{0, 0, 1920, 1080}, small{0, 0, 1440, 900}, right{1920, 0, 800, 600},
    tiny{0, 0, 310, 100};

INSTANTIATE_TEST_SUITE_P(
    Places, PlaceOfTheHUD,
    testing::Values(
        Place{"RightEdge", {full}, Point{1800, 540}, {1608, 495}},
        Place{"LeftEdge", {full}, Point{120, 540}, {12, 495}},
        Place{"TopEdge", {full}, Point{960, 1000}, {810, 955}},
        Place{"LowerLeft", {full}, Point{0, 0}, {12, 12}},
        Place{"NoAnchor", {small}, std::nullopt, {570, 710}},
        Place{"OnTheSecondDisplay", {full, right}, Point{1920, 700}, {1932, 655}},
        // The last point of one display is the first of the next.
        Place{"BetweenDisplays", {right, {2720, 0, 800, 600}}, Point{2720, 300}, {2732, 255}},
        Place{"OnNoDisplay", {full, right}, Point{2720, 0}, {1608, 12}},
        Place{"UpperBoundWins", {tiny}, Point{155, 50}, {-2, -2}},
        Place{"NoDisplay", {}, Point{5, 5}, {-312, -102}}),
    [](const auto& row) { return row.param.name; });

TEST(TakeoverHUD, FitsItsPanelToTheDisplayItGoesTo) {
    Fixture f;
    for (const auto& frame : {full, right}) f.displays.add("D", frame);
    f.show(Point{1920, 700});
    EXPECT_EQ(f.panel(0).askedOn, (Point{2320, 780}));
    f.show();
    EXPECT_EQ(f.panel(1).askedOn, (Point{960, 540}));
}

TEST(Palette, GivesEachDongleTheColorOfItsBytes) {
    Uuid id;
    id.bytes.fill(0);
    id.bytes[0] = 0xFF;
    id.bytes[15] = 0xFF;
    id.bytes[7] = 190; // 700 in all
    EXPECT_EQ(Palette::color(id), NamedColor::green);
    id.bytes[7] = 191;
    EXPECT_EQ(Palette::color(id), NamedColor::orange);
    id.bytes[7] = 196;
    EXPECT_EQ(Palette::color(id), NamedColor::yellow);
}

} // namespace
} // namespace quenthisar
