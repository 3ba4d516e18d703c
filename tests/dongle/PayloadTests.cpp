// SPDX-License-Identifier: MIT
#include "dongle/Payload.h"

#include <QByteArray>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace quenthisar::dongle {
namespace {

std::string meaningOf(const char* hex) {
    const auto text = QByteArray::fromHex(hex);
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    return describe(decode(bytes));
}

TEST(Payload, IsDescribedOrMalformed) {
    const std::pair<const char*, const char*> payloads[] = {
        {"000000000000000000000000000000", "probe"},
        {"010000000000000000000000000000", "keyboard modifiers=none keys=none"},
        {"010200000000000000040506070809", "keyboard modifiers=shift keys=a,b,c,d,e,f"},
        {"010f00000000000000285200870000",
         "keyboard modifiers=control+shift+alt+gui keys=enter,up,0x87"},
        {"020001fffb00030000000000000000", "mouse buttons=left dx=-5 dy=3 wheel=0"},
        {"0200067fff8000ffff000000000000",
         "mouse buttons=right+middle dx=32767 dy=-32768 wheel=-1"},
        {"04000000e900000000000000000000", "consumer usage=volume-up"},
        {"040000018300000000000000000000", "consumer usage=0x183"},
        {"040000000000000000000000000000", "consumer usage=none"},
        {"", "malformed length 0"},
        {"0100000000000000000400000000", "malformed length 14"},
        {"01000000000000000004000000000000", "malformed length 16"},
        {"030000000000000000000000000000", "malformed kind 3"},
        {"000000000000000000000000000001", "malformed probe not zero"},
        {"011000000000000000000000000000", "malformed modifiers 0x10"},
        {"010000040000000000000000000000", "malformed keyboard padding not zero"}, // a boot report
        {"020008000000000000000000000000", "malformed buttons 0x08"},
        {"020000000000000000010000000000", "malformed mouse padding not zero"},
        {"04e900000000000000000000000000", "malformed consumer padding not zero"},
    };
    for (const auto& [hex, meaning] : payloads) EXPECT_EQ(meaningOf(hex), meaning) << hex;
}

} // namespace
} // namespace quenthisar::dongle
