// SPDX-License-Identifier: MIT
#include "unit/TakeoverFixture.h"

#include <gtest/gtest.h>

#include <array>

namespace quenthisar {
namespace {

constexpr auto passOn = TapVerdict::passOn;
constexpr auto swallow = TapVerdict::swallow;
constexpr std::uint64_t chord = EventFlags::control | EventFlags::option | EventFlags::command;
const Payloads released{bytes({1}), bytes({2})};

struct EdgeCase {
    const char* name;
    Edge edge;
    Point inside, outside; // the band's last point and the first beyond it
    Payload slam;
};

class EveryEdge : public testing::TestWithParam<EdgeCase> {};

TEST_P(EveryEdge, TakesOverInItsBandAndSlamsTowardsTheFacingSide) {
    const auto& row = GetParam();
    TakeoverFixture f;
    f.state.cornerSlam = true;
    f.bind(A, row.edge);
    EXPECT_EQ(f.moveTo(row.outside.x, row.outside.y), passOn);
    EXPECT_FALSE(f.isRemote());
    EXPECT_EQ(f.moveTo(row.inside.x, row.inside.y), swallow);
    EXPECT_EQ(*f.state.takeover, (Takeover{A, row.edge, "D1"}));
    EXPECT_EQ(*f.state.activeMode, "Zandrovelkin (AAAA)");
    EXPECT_EQ(f.taps.calls, (std::vector<std::string>{"freeze", "hide"}));
    EXPECT_EQ(f.sent(), Payloads{row.slam});
}

INSTANTIATE_TEST_SUITE_P(
    Takeover, EveryEdge,
    testing::Values(
        EdgeCase{"Left", Edge::left, {1, 500}, {1.5, 500}, bytes({2, 0, 0, 0x1E, 0})},
        EdgeCase{"Right", Edge::right, {1918, 500}, {1917.5, 500}, bytes({2, 0, 0, 0xE2, 0})},
        EdgeCase{"Top", Edge::top, {500, 1}, {500, 1.5}, bytes({2, 0, 0, 0, 0, 0x1E, 0})},
        EdgeCase{"Bottom", Edge::bottom, {500, 1078}, {500, 1077.5}, bytes({2, 0, 0, 0, 0, 0xE2})}),
    [](const auto& row) { return row.param.name; });

TEST(Takeover, PointsUpToTwoOutsideADisplayBelongToIt) {
    struct Row {
        Edge edge;
        Point outside, inside;
    };
    for (const auto& [edge, outside, inside] : {Row{Edge::left, {-2.5, 500}, {-2, 500}},
                                                {Edge::left, {-2, -2.5}, {-2, -2}},
                                                {Edge::right, {1922.5, 500}, {1922, 500}},
                                                {Edge::right, {1922, 1082.5}, {1922, 1082}}}) {
        TakeoverFixture f;
        f.state.allowSharedEdges = true; // the whole length counts, corners beyond it too
        f.bind(A, edge);
        EXPECT_EQ(f.moveTo(outside.x, outside.y), passOn) << outside.x << ' ' << outside.y;
        EXPECT_EQ(f.moveTo(inside.x, inside.y), swallow) << inside.x << ' ' << inside.y;
    }
}

TEST(Takeover, ACornerTriesItsEdgesInOrderUntilOneLeadsSomewhere) {
    TakeoverFixture both;
    both.bind(A, Edge::top);
    both.bind(B, Edge::left);
    both.moveTo(0, 0);
    EXPECT_EQ((*both.state.takeover)->edge, Edge::left);

    TakeoverFixture leftIsGone;
    leftIsGone.bind(A, Edge::top);
    leftIsGone.bind(B, Edge::left);
    leftIsGone.central.drop(leftIsGone.dongles[B]);
    leftIsGone.moveTo(0, 0);
    EXPECT_EQ(*leftIsGone.state.takeover, (Takeover{A, Edge::top, "D1"}));
}

TEST(Takeover, OnATinyDisplayLeftComesBeforeRightAndTopBeforeBottom) {
    TakeoverFixture f;
    f.displays.list.clear();
    f.addDisplay("D9", {0, 0, 3, 3});
    f.state.allowSharedEdges = true;
    const std::array order{Edge::left, Edge::right, Edge::top, Edge::bottom};
    for (const auto edge : order) f.bind(A, edge, "D9");
    for (const auto edge : order) {
        f.moveTo(1, 1);
        EXPECT_EQ(*f.state.takeover, (Takeover{A, edge, "D9"})) << rawText(edge);
        f.flags(chord);
        f.moveTo(50, 50);
        f.state.setBinding("D9", edge, std::nullopt);
    }
}

TEST(Takeover, OnlyExposedStretchesCountUnlessSharedEdgesAreAllowed) {
    TakeoverFixture f;
    f.addDisplay("D2", {1920, 0, 800, 500});
    f.bind(A, Edge::right);
    EXPECT_EQ(f.moveTo(1919, 499), passOn);
    EXPECT_EQ(f.moveTo(1919, 500), swallow) << "the ends of a stretch belong to it";
    TakeoverFixture shared;
    shared.addDisplay("D2", {1920, 0, 800, 500});
    shared.state.allowSharedEdges = true;
    shared.bind(A, Edge::right);
    EXPECT_EQ(shared.moveTo(1919, 250), swallow);
}

TEST(Takeover, TheEarlierOfTwoDisplaysWins) {
    TakeoverFixture f;
    f.state.allowSharedEdges = true;
    f.addDisplay("D2", {1920, 0, 800, 500});
    f.bind(B, Edge::left, "D2");
    f.moveTo(1919, 250);
    EXPECT_EQ(*f.state.takeover, (Takeover{B, Edge::left, "D2"})) << "D1 leads nowhere";
    f.flags(chord);
    f.moveTo(50, 50);
    f.bind(A, Edge::right);
    f.moveTo(1919, 250);
    EXPECT_EQ(*f.state.takeover, (Takeover{A, Edge::right, "D1"}));
}

TEST(Takeover, NothingCrossesWithoutABindingAConnectionOrCapture) {
    TakeoverFixture f;
    EXPECT_EQ(f.moveTo(0, 500), passOn);
    f.bind(C, Edge::left);
    EXPECT_EQ(f.moveTo(0, 500), passOn) << "no dongle of this id is known";
    f.bind(A, Edge::left);
    f.central.drop(f.dongles[A]);
    EXPECT_EQ(f.moveTo(0, 500), passOn);
    f.controller.stop();
    EXPECT_FALSE(f.taps.isDelivering());
    EXPECT_TRUE(f.taps.calls.empty());
}

TEST(Takeover, ADragCrossesWithoutItsButton) {
    TakeoverFixture f;
    f.bind(A, Edge::left);
    EXPECT_EQ(f.post(EventType::leftMouseDown), passOn);
    EXPECT_EQ(f.taps.post({.type = EventType::leftMouseDragged, .location = {0, 500}}), swallow);
    EXPECT_TRUE(f.sent().empty());
    f.post(EventType::leftMouseUp);
    EXPECT_EQ(f.sent(), Payloads{bytes({2})});
}

TEST(Takeover, TheChordReleasesEverythingThenGivesTheCursorBack) {
    TakeoverFixture f;
    f.bind(A, Edge::left);
    f.moveTo(0, 500);
    f.key(EventType::keyDown, 0);
    f.taps.calls.clear();
    f.sent();
    std::vector<std::string> order;
    const auto takeover = f.state.takeover.subscribe([&](const auto& value) {
        if (!value) order.push_back("takeover none in " + *f.state.activeMode);
    });
    EXPECT_EQ(f.flags(EventFlags::control | EventFlags::option), swallow);
    f.sent();
    EXPECT_EQ(f.flags(chord | EventFlags::shift), swallow);
    EXPECT_EQ(f.sent(), released);
    EXPECT_EQ(f.taps.calls, (std::vector<std::string>{"unfreeze", "show"}));
    EXPECT_EQ(order, std::vector<std::string>{"takeover none in Zandrovelkin (AAAA)"});
    EXPECT_EQ(*f.state.activeMode, "Local");
    EXPECT_EQ(f.flags(EventFlags::control), passOn);
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

TEST(Takeover, AfterAReturnThePointerMustLeaveTheEdgeOnce) {
    TakeoverFixture f;
    f.bind(A, Edge::left);
    f.moveTo(0, 500);
    f.flags(chord);
    EXPECT_EQ(f.moveTo(0, 510), passOn);
    EXPECT_EQ(f.moveTo(0, 520), passOn);
    EXPECT_EQ(f.moveTo(2, 520), passOn) << "re-arms and never takes over";
    EXPECT_EQ(f.moveTo(0, 520), swallow);
}

TEST(Takeover, ReArmingSurvivesStopAndStart) {
    TakeoverFixture f;
    f.bind(A, Edge::left);
    f.moveTo(0, 500);
    f.controller.stop();
    EXPECT_EQ(f.sent(), released);
    EXPECT_FALSE(f.isRemote());
    EXPECT_FALSE(*f.state.captureEnabled);
    f.controller.start();
    EXPECT_EQ(f.moveTo(0, 500), passOn);
    f.controller.takeOver(B);
    EXPECT_TRUE(f.isRemote());
    f.flags(chord);
    EXPECT_EQ(f.moveTo(9, 500), passOn);
    EXPECT_EQ(f.moveTo(0, 500), swallow);
}

TEST(Takeover, WithoutAnEdgeThereIsNeitherSlamNorSlamReturn) {
    TakeoverFixture f;
    f.state.cornerSlam = true;
    f.controller.takeOver(C);
    EXPECT_FALSE(f.isRemote());
    f.controller.takeOver(B);
    EXPECT_EQ(*f.state.takeover, (Takeover{B, std::nullopt, std::nullopt}));
    f.controller.takeOver(A);
    EXPECT_EQ((*f.state.takeover)->dongleID, B) << "a takeover that runs goes on";
    f.motion(500, 500);
    f.motion(-900, -900);
    EXPECT_TRUE(f.isRemote());
    EXPECT_EQ(f.sent(B).size(), 2U);
    f.controller.stop();
    f.controller.takeOver(B);
    EXPECT_FALSE(f.isRemote()) << "capture is off";
}

struct SlamCase {
    const char* name;
    Edge edge;
    Point at;
    std::int64_t awayX, awayY;
};

class SlamReturn : public testing::TestWithParam<SlamCase> {};

TEST_P(SlamReturn, ArmsAfterFortyAwayAndFiresBackAtTheEntrySide) {
    const auto& row = GetParam();
    TakeoverFixture f;
    f.state.cornerSlam = true;
    f.bind(A, row.edge);
    f.moveTo(row.at.x, row.at.y);
    const auto away = [&](int units) { f.motion(row.awayX * units, row.awayY * units); };
    away(-30);
    away(69);
    away(-39);
    EXPECT_TRUE(f.isRemote()) << "39 away of where it came in doesn't arm";
    away(40);
    f.sent();
    away(-39);
    EXPECT_TRUE(f.isRemote());
    away(-1);
    EXPECT_FALSE(f.isRemote());
    const Payloads payloads = f.sent();
    ASSERT_EQ(payloads.size(), 3U) << "the move that fires is not sent";
    EXPECT_EQ((Payloads{payloads[1], payloads[2]}), released);
}

INSTANTIATE_TEST_SUITE_P(Takeover, SlamReturn,
                         testing::Values(SlamCase{"Left", Edge::left, {0, 500}, -1, 0},
                                         SlamCase{"Right", Edge::right, {1919, 500}, 1, 0},
                                         SlamCase{"Top", Edge::top, {500, 0}, 0, -1},
                                         SlamCase{"Bottom", Edge::bottom, {500, 1079}, 0, 1}),
                         [](const auto& row) { return row.param.name; });

TEST(SlamReturn, OneMoveMayArmAndADistanceTheWrongWayMustBeMadeGood) {
    TakeoverFixture f;
    f.state.cornerSlam = true;
    f.bind(A, Edge::left);
    f.moveTo(0, 500);
    f.motion(100, 0);
    f.motion(-139, 0);
    f.motion(39, 0);
    EXPECT_TRUE(f.isRemote()) << "-39, then 0: not armed";
    f.motion(-40, 0);
    f.motion(41, 0);
    EXPECT_FALSE(f.isRemote());
}

TEST(Capture, ARefusedTapLeavesItOff) {
    TakeoverFixture f;
    f.controller.stop();
    f.taps.refuses = true;
    int assignments = -1; // the subscription delivers the current value
    const auto stream = f.state.captureEnabled.subscribe([&](bool) { ++assignments; });
    f.controller.start();
    EXPECT_EQ(assignments, 0);
    f.controller.stop();
    EXPECT_EQ(assignments, 1) << "stop always says so";
}

TEST(Capture, ADisabledTapIsEnabledAgainAlsoInATakeover) {
    TakeoverFixture f;
    f.bind(A, Edge::left);
    f.moveTo(0, 500);
    for (const auto type : {EventType::tapDisabledByTimeout, EventType::tapDisabledByUserInput}) {
        EXPECT_EQ(f.taps.notify(type), passOn);
        EXPECT_TRUE(f.taps.enabled);
    }
    EXPECT_TRUE(f.sent().empty());
    EXPECT_TRUE(f.isRemote());
}

TEST(Takeover, OutlivesItsLink) {
    TakeoverFixture f;
    f.bind(A, Edge::left);
    f.moveTo(0, 500);
    f.central.drop(f.dongles[A]);
    EXPECT_EQ(f.key(EventType::keyDown, 0), swallow);
    f.manager.connect(A);
    f.clock.settle();
    EXPECT_EQ(f.key(EventType::keyDown, 11), swallow);
    EXPECT_EQ(f.sent(), Payloads{bytes({1, 0, 0, 0, 0, 0, 0, 0, 0, 0x04, 0x05})});
    EXPECT_EQ(f.flags(chord), swallow);
    EXPECT_FALSE(f.isRemote());
}

} // namespace
} // namespace quenthisar
