// SPDX-License-Identifier: MIT
#include "dongle/Payload.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace quenthisar::dongle {
namespace {

struct Case {
    const char* name;
    std::vector<std::uint8_t> bytes;
    const char* meaning;
};

class Payloads : public testing::TestWithParam<Case> {};

TEST_P(Payloads, AreDescribed) {
    EXPECT_EQ(describe(decode(GetParam().bytes)), GetParam().meaning);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Payloads,
    testing::Values(
        Case{"Probe", {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, "probe"},
        Case{"AllKeysUp",
             {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
             "keyboard modifiers=none keys=none"},
        Case{"SixKeys",
             {1, 2, 0, 0, 0, 0, 0, 0, 0, 4, 5, 6, 7, 8, 9},
             "keyboard modifiers=shift keys=a,b,c,d,e,f"},
        Case{"AllModifiers",
             {1, 0x0F, 0, 0, 0, 0, 0, 0, 0, 0x28, 0x52, 0, 0, 0, 0},
             "keyboard modifiers=control+shift+alt+gui keys=enter,up"},
        Case{"UnknownKey",
             {1, 0, 0, 0, 0, 0, 0, 0, 0, 0x87, 0, 0, 0, 0, 0},
             "keyboard modifiers=none keys=0x87"},
        Case{"ButtonAndMotion",
             {2, 0, 1, 0xFF, 0xFB, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0},
             "mouse buttons=left dx=-5 dy=3 wheel=0"},
        Case{"ExtremeMotion",
             {2, 0, 6, 0x7F, 0xFF, 0x80, 0, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0},
             "mouse buttons=right+middle dx=32767 dy=-32768 wheel=-1"},
        Case{"MediaKey",
             {4, 0, 0, 0, 0xE9, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
             "consumer usage=volume-up"},
        Case{"UnknownMediaKey",
             {4, 0, 0, 1, 0x83, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
             "consumer usage=0x183"},
        Case{"MediaKeyUp", {4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, "consumer usage=none"},
        Case{"Empty", {}, "malformed length 0"},
        Case{"TooShort", {1, 0, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0, 0}, "malformed length 14"},
        Case{"TooLong", {1, 0, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0}, "malformed length 16"},
        Case{"UnknownKind", {3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, "malformed kind 3"},
        Case{"ProbeWithData",
             {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1},
             "malformed probe not zero"},
        Case{"RightModifier",
             {1, 0x10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
             "malformed modifiers 0x10"},
        Case{"KeysAsInABootReport",
             {1, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
             "malformed keyboard padding not zero"},
        Case{"FourthButton",
             {2, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
             "malformed buttons 0x08"},
        Case{"MousePadding",
             {2, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0},
             "malformed mouse padding not zero"},
        Case{"ConsumerPadding",
             {4, 0xE9, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
             "malformed consumer padding not zero"}),
    [](const auto& row) { return std::string{row.param.name}; });

} // namespace
} // namespace quenthisar::dongle
