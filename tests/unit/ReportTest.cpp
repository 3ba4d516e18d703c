// SPDX-License-Identifier: MIT
#include "Protocol/Report.h"
#include "unit/Payloads.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

constexpr std::array<std::uint8_t, 7> sevenKeys{4, 5, 6, 7, 8, 9, 10};

TEST(KeyboardReport, HoldsItsKeysAtNineToFourteenAndDropsTheSeventh) {
    EXPECT_EQ(Report::keyboard(0, {}), bytes({1}));
    EXPECT_EQ(Report::keyboard(2, sevenKeys), bytes({1, 2, 0, 0, 0, 0, 0, 0, 0, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(Report::keyboard(0x0F, std::span{sevenKeys}.first(2)),
              bytes({1, 0x0F, 0, 0, 0, 0, 0, 0, 0, 4, 5, 0, 0, 0, 0}));
    EXPECT_EQ(Report::allKeysUp(), bytes({1}));
}

struct MouseCase {
    const char* name;
    Report::MouseFields fields;
    Payload expected;
};

class MouseReport : public testing::TestWithParam<MouseCase> {};

TEST_P(MouseReport, IsBigEndianAndSaturates) {
    EXPECT_EQ(Report::mouse(GetParam().fields), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Fields, MouseReport,
    testing::Values(
        MouseCase{"Nothing", {}, bytes({2})},
        MouseCase{"SmallNegative",
                  {.buttons = 1, .dx = -5, .dy = 3},
                  bytes({2, 0, 1, 0xFF, 0xFB, 0x00, 0x03})},
        MouseCase{"Saturates", {.dx = 40000, .dy = -40000}, bytes({2, 0, 0, 0x7F, 0xFF, 0x80, 0})},
        MouseCase{"SaturatesBeyond32Bits",
                  {.dx = 0x1'0000'0001, .wheel = -0x1'0000'0001},
                  bytes({2, 0, 0, 0x7F, 0xFF, 0, 0, 0x80, 0})},
        MouseCase{"Slam", {.dx = 7680, .dy = -7680}, bytes({2, 0, 0, 0x1E, 0, 0xE2, 0})},
        MouseCase{"WheelDown", {.wheel = -1}, bytes({2, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF})}),
    [](const auto& row) { return row.param.name; });

TEST(ConsumerReport, CarriesTheUsageAtThree) {
    EXPECT_EQ(Report::consumer(0xE9), bytes({4, 0, 0, 0, 0xE9}));
    EXPECT_EQ(Report::consumer(0), bytes({4}));
}

TEST(PairingProbe, IsFifteenZeros) {
    EXPECT_EQ(Report::pairingProbe, Payload{});
}

struct MotionCase {
    const char* name;
    Payload previousMouse, payload;
    bool isPureMotion;
};

class PureMotion : public testing::TestWithParam<MotionCase> {};

TEST_P(PureMotion, ChangesNeitherButtonsNorWheelAndReachesNoCorner) {
    const auto& row = GetParam();
    EXPECT_EQ(Report::isPureMotion(row.previousMouse, row.payload), row.isPureMotion);
}

using Report::mouse;
INSTANTIATE_TEST_SUITE_P(
    Payloads, PureMotion,
    testing::Values(MotionCase{"Motion", mouse({}), mouse({.dx = 7679, .dy = -7679}), true},
                    MotionCase{"Drag", mouse({.buttons = 1, .wheel = 3}),
                               mouse({.buttons = 1, .dx = 1}), true},
                    MotionCase{"Press", mouse({}), mouse({.buttons = 1, .dx = 1}), false},
                    MotionCase{"Release", mouse({.buttons = 5}), mouse({.buttons = 4}), false},
                    MotionCase{"Wheel", mouse({}), mouse({.dx = 1, .wheel = -1}), false},
                    MotionCase{"SlamToTheLeft", mouse({}), mouse({.dx = -7680}), false},
                    MotionCase{"SlamDown", mouse({}), mouse({.dy = 7680}), false},
                    MotionCase{"Farthest", mouse({}), mouse({.dx = -32768}), false},
                    MotionCase{"Keyboard", mouse({}), Report::allKeysUp(), false},
                    MotionCase{"Probe", mouse({}), Report::pairingProbe, false}),
    [](const auto& row) { return row.param.name; });

TEST(Report, KeepsOnlyItsButtonsAtRest) {
    EXPECT_EQ(Report::atRest(mouse({.buttons = 5, .dx = 1, .dy = -1, .wheel = 2})),
              mouse({.buttons = 5}));
}

} // namespace
} // namespace quenthisar
