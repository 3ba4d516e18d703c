// SPDX-License-Identifier: MIT
#include "Capture/KeycodeMap.h"
#include "Linux/HostKeys.h"

#include <gtest/gtest.h>

#include <array>

namespace quenthisar::test {

namespace {

// What the Linux kernel calls the key of each HID usage from 0x04 on; 0 where the host has none.
constexpr auto kernelCodes = std::to_array<std::uint32_t>(
    {30, 48, 46, 32, 18, 33, 34, 35, 23, 36,  37,  38,  50,  49,  24,  25,  16,  19,  31, 20,
     22, 47, 17, 45, 21, 44, 2,  3,  4,  5,   6,   7,   8,   9,   10,  11,  28,  1,   14, 15,
     57, 12, 13, 26, 27, 43, 0,  39, 40, 41,  51,  52,  53,  0,   59,  60,  61,  62,  63, 64,
     65, 66, 67, 68, 87, 88, 0,  0,  0,  110, 102, 104, 111, 107, 109, 106, 105, 108, 103});

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

} // namespace quenthisar::test
