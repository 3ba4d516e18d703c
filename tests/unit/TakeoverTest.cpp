// SPDX-License-Identifier: MIT
#include "support/Steps.h"
#include "unit/Fakes.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

const Payloads released{bytes({1}), bytes({2})};

/// The application with dongle A connected.
struct Desk : Witness, World {
    Desk() : World(static_cast<Witness&>(*this)) {
        Steps::perform(Steps::parse("dongle A connected").value(), *this);
    }
    Payloads sent() { return central.takePayloads(A); }
    bool isRemote() { return state().takeover->has_value(); }
};

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
    Desk f;
    f.state().cornerSlam = true;
    f.state().setBinding("D1", row.edge, A);
    f.moveTo(row.outside);
    EXPECT_FALSE(f.isRemote());
    f.moveTo(row.inside);
    EXPECT_EQ(*f.state().takeover, (Takeover{A, row.edge, "D1"}));
    EXPECT_EQ(f.sent(), Payloads{row.slam});
    EXPECT_FALSE(Report::isPureMotion(Report::mouse({}), row.slam)) << "or a slow link drops it";

    const auto away = [&](int units) { f.moveBy(row.awayX * units, row.awayY * units); };
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

TEST(Forwarding, ASeventhKeyWaitsUntilOneOfSixIsReleased) {
    Desk f;
    f.app().eventTap->takeOver(A);
    for (const int code : {0, 11, 11, 8, 2, 14, 3, 5}) f.key(code, true);
    EXPECT_EQ(f.sent().back(), bytes({1, 0, 0, 0, 0, 0, 0, 0, 0, 4, 5, 6, 7, 8, 9}));
    f.key(0, false);
    EXPECT_EQ(f.sent(), Payloads{bytes({1, 0, 0, 0, 0, 0, 0, 0, 0, 5, 6, 7, 8, 9, 10})});
}

} // namespace
} // namespace quenthisar
