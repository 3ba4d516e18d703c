// SPDX-License-Identifier: MIT
#include "Capture/KeycodeMap.h"
#include "Linux/HostKeys.h"
#include "Linux/Monitor.h"
#include "Linux/MotionPacer.h"

#include <gtest/gtest.h>

#include <array>

namespace quenthisar::test {

namespace {

using namespace std::chrono_literals;

// What the Linux kernel calls the key of each HID usage from 0x04 on; 0 where the host has none.
constexpr auto kernelCodes = std::to_array<std::uint32_t>(
    {30, 48, 46, 32, 18, 33, 34, 35, 23, 36,  37,  38,  50,  49,  24,  25,  16,  19,  31, 20,
     22, 47, 17, 45, 21, 44, 2,  3,  4,  5,   6,   7,   8,   9,   10,  11,  28,  1,   14, 15,
     57, 12, 13, 26, 27, 43, 0,  39, 40, 41,  51,  52,  53,  0,   59,  60,  61,  62,  63, 64,
     65, 66, 67, 68, 87, 88, 0,  0,  0,  110, 102, 104, 111, 107, 109, 106, 105, 108, 103});

MotionPacer::Clock::time_point at(std::chrono::microseconds time) {
    return MotionPacer::Clock::time_point{1h + time};
}

constexpr FineMotion pixels(std::int64_t x, std::int64_t y) {
    return {x * finePerPixel, y * finePerPixel};
}

Monitor monitor(const char* name, const QByteArray& edid = {}, Rect frame = {}) {
    return {.name = name, .frame = frame, .edid = edid};
}

} // namespace

TEST(HostKeys, TakeEveryKeyToItsUsage) {
    std::uint8_t usage = 0x04;
    for (const auto code : kernelCodes) {
        if (code != 0) {
            const auto key = hostKey(code + 8);
            ASSERT_EQ(key.kind, HostKey::Kind::key) << "kernel code " << code;
            EXPECT_EQ(KeycodeMap::usage(key.code), usage) << "kernel code " << code;
        }
        ++usage;
    }
    EXPECT_EQ(KeycodeMap::usage(hostKey(8 + 96).code), std::nullopt) << "Enter of the keypad";
    EXPECT_EQ(KeycodeMap::consumerUsage(hostKey(8 + 164).code), 0xCD);
    EXPECT_EQ(hostKey(8 + 161).kind, HostKey::Kind::swallowed) << "Eject";
}

TEST(MotionPacer, SumsWhatComesTooFast) {
    MotionPacer pacer;
    EXPECT_TRUE(pacer.add(pixels(1, 0), at(0ms)));
    EXPECT_FALSE(pacer.add(pixels(1, 2), at(1ms)));
    EXPECT_FALSE(pacer.add(pixels(1, 2), at(6'999us)));
    ASSERT_EQ(pacer.due(), at(8ms));
    const auto delta = pacer.take(at(8ms));
    ASSERT_TRUE(delta);
    EXPECT_EQ(delta->x, 2);
    EXPECT_EQ(delta->y, 4);
    EXPECT_TRUE(pacer.add(pixels(1, 0), at(15ms))) << "a mouse of 125 Hz that came early";
}

TEST(MotionPacer, CarriesFractionsOver) {
    MotionPacer pacer;
    std::int64_t x = 0, y = 0;
    for (int i = 1; i <= 1000; ++i) {
        const auto delta = pacer.add({finePerPixel * 3 / 10, -finePerPixel * 7 / 10}, at(i * 10ms));
        x += delta ? delta->x : 0;
        y += delta ? delta->y : 0;
    }
    EXPECT_EQ(x, 299) << "0.3 is a little less than 0.3 in binary";
    EXPECT_EQ(y, -699);
    EXPECT_FALSE(pacer.due()) << "no whole pixel is left";
}

TEST(Monitors, KeepTheirIdentityOnAnotherConnectorUnlessAnEqualOneIsThere) {
    const auto first = monitor("DP-1", "edid"), moved = monitor("DP-2", "edid");
    const auto blank = monitor("DP-1"), otherBlank = monitor("DP-2");
    EXPECT_EQ(displayIdentifier(first, {first}), displayIdentifier(moved, {moved}));
    EXPECT_NE(displayIdentifier(first, {first, moved}), displayIdentifier(moved, {first, moved}));
    EXPECT_NE(displayIdentifier(blank, {blank}), displayIdentifier(otherBlank, {otherBlank}));
}

} // namespace quenthisar::test
