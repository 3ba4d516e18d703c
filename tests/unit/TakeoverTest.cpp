// SPDX-License-Identifier: MIT
#include "unit/TakeoverFixture.h"

#include <gtest/gtest.h>

#include <limits>

namespace quenthisar {
namespace {

constexpr auto passOn = TapVerdict::passOn;
constexpr auto swallow = TapVerdict::swallow;
constexpr std::uint64_t chord = EventFlags::control | EventFlags::option | EventFlags::command;
const Payloads released{bytes({1}), bytes({2})};

struct EdgeCase {
    const char* name;
    Edge edge;
    Point inside, outside;     // the band's last point and the first beyond it
    std::int64_t awayX, awayY; // of where the target's pointer comes in
    Payload slam;
};

class EveryEdge : public testing::TestWithParam<EdgeCase> {};

TEST_P(EveryEdge, TakesOverInItsBandAndReturnsWhenPushedBackAgainstTheSideOfTheSlam) {
    const auto& row = GetParam();
    TakeoverFixture f;
    f.state.cornerSlam = true;
    f.bind(A, row.edge);
    EXPECT_EQ(f.moveTo(row.outside.x, row.outside.y), passOn);
    EXPECT_FALSE(f.isRemote());
    EXPECT_EQ(f.moveTo(row.inside.x, row.inside.y), swallow);
    EXPECT_EQ(*f.state.takeover, (Takeover{A, row.edge, "D1"}));
    EXPECT_EQ(f.sent(), Payloads{row.slam});
    EXPECT_FALSE(Report::isPureMotion(Report::mouse({}), row.slam)) << "or a slow link drops it";

    const auto away = [&](int units) { f.motion(row.awayX * units, row.awayY * units); };
    away(-30);
    away(69);
    away(-39);
    EXPECT_TRUE(f.isRemote()) << "39 away of where it came in doesn't arm";
    away(40);
    f.sent();
    away(-39);
    EXPECT_TRUE(f.isRemote());
    EXPECT_EQ(f.sent().size(), 1U);
    away(-1);
    EXPECT_FALSE(f.isRemote());
    EXPECT_EQ(f.sent(), released) << "the move that fires is not sent";
}

INSTANTIATE_TEST_SUITE_P(
    Takeover, EveryEdge,
    testing::Values(
        EdgeCase{"Left", Edge::left, {1, 500}, {1.5, 500}, -1, 0, bytes({2, 0, 0, 0x1E, 0})},
        EdgeCase{"Right", Edge::right, {1918, 500}, {1917.5, 500}, 1, 0, bytes({2, 0, 0, 0xE2})},
        EdgeCase{"Top", Edge::top, {500, 1}, {500, 1.5}, 0, -1, bytes({2, 0, 0, 0, 0, 0x1E})},
        EdgeCase{"Bottom",
                 Edge::bottom,
                 {500, 1078},
                 {500, 1077.5},
                 0,
                 1,
                 bytes({2, 0, 0, 0, 0, 0xE2})}),
    [](const auto& row) { return row.param.name; });

TEST(Takeover, WhereEdgesMeetTheFirstThatLeadsSomewhereCounts) {
    TakeoverFixture f;
    f.displays.list.clear();
    f.addDisplay("D9", {0, 0, 3, 3}); // all of it is on every edge
    f.addDisplay("D10", {3, 0, 800, 500});
    f.state.allowSharedEdges = true;
    const auto expectAt = [&](const Takeover& takeover) {
        f.moveTo(1, 1);
        EXPECT_EQ(*f.state.takeover, takeover);
        f.flags(chord);
        f.moveTo(50, 50);
    };
    f.bind(B, Edge::left, "D10");
    expectAt({B, Edge::left, "D10"});
    for (const auto edge : {Edge::bottom, Edge::top, Edge::right, Edge::left}) {
        f.bind(A, edge, "D9");
        expectAt({A, edge, "D9"});
    }
    f.bind(B, Edge::left, "D9");
    f.central.drop(f.dongles[B]);
    expectAt({A, Edge::right, "D9"});
}

TEST(Takeover, HasEndedBeforeItsObserversHearOfIt) {
    TakeoverFixture f;
    f.controller.takeOver(A);
    const auto stream = f.state.takeover.subscribe([&](const auto& value) {
        if (!value) f.controller.stop();
    });
    f.flags(chord);
    EXPECT_EQ(f.sent(), released) << "once";
    EXPECT_EQ(f.taps.calls, (std::vector<std::string>{"freeze", "hide", "unfreeze", "show"}));
}

TEST(Forwarding, ASeventhKeyWaitsUntilOneOfSixIsReleased) {
    TakeoverFixture f;
    f.controller.takeOver(A);
    for (const int code : {0, 11, 11, 8, 2, 14, 3, 5}) f.key(EventType::keyDown, code);
    EXPECT_EQ(f.sent().back(), bytes({1, 0, 0, 0, 0, 0, 0, 0, 0, 4, 5, 6, 7, 8, 9}));
    f.key(EventType::keyUp, 0);
    EXPECT_EQ(f.sent(), Payloads{bytes({1, 0, 0, 0, 0, 0, 0, 0, 0, 5, 6, 7, 8, 9, 10})});
}

TEST(Forwarding, FactorsThatNoPointerHasDoNoHarm) {
    TakeoverFixture f;
    f.controller.takeOver(A);
    const auto moved = [&](double factor, std::int64_t dx, std::int64_t dy) {
        f.state.setSensitivity(factor, A);
        f.motion(dx, dy);
        return f.sent();
    };
    EXPECT_EQ(moved(std::numeric_limits<double>::infinity(), 0, 1), Payloads{bytes({2})});
    EXPECT_EQ(moved(1e300, 1, -1), Payloads{bytes({2, 0, 0, 0x7F, 0xFF, 0x80, 0})});
    EXPECT_EQ(moved(2.0, 1, 1), (Payloads{bytes({2, 0, 0, 0, 2, 0, 2})}));
}

} // namespace
} // namespace quenthisar
