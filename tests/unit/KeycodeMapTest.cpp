// SPDX-License-Identifier: MIT
#include "Capture/KeycodeMap.h"

#include "Platform/EventTap.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <string_view>

namespace quenthisar {
namespace {

TEST(KeycodeMap, TurnsPositionsIntoUsages) {
    EXPECT_EQ(KeycodeMap::usage(0), 0x04);
    EXPECT_EQ(KeycodeMap::usage(36), 0x28);
    EXPECT_EQ(KeycodeMap::usage(51), 0x2A);
    EXPECT_EQ(KeycodeMap::usage(117), 0x4C);
    EXPECT_EQ(KeycodeMap::usage(114), 0x49);
    for (const int code : {10, 55, 56, 57, 63, 82, 105, 127, 128, 0xFFFF})
        EXPECT_EQ(KeycodeMap::usage(static_cast<std::uint16_t>(code)), std::nullopt) << code;
}

TEST(KeycodeMap, HasSeventyFourDifferentUsages) {
    std::set<std::uint8_t> usages;
    for (std::uint32_t code = 0; code <= 0xFFFF; ++code)
        if (const auto usage = KeycodeMap::usage(static_cast<std::uint16_t>(code))) {
            EXPECT_TRUE(usages.insert(*usage).second) << code;
        }
    EXPECT_EQ(usages.size(), 74U);
    EXPECT_FALSE(usages.contains(0x32));
    EXPECT_FALSE(usages.contains(0x39));
    EXPECT_EQ(*usages.rbegin(), 0x52);
}

TEST(KeycodeMap, TurnsMediaKeysIntoConsumerUsages) {
    EXPECT_EQ(KeycodeMap::consumerUsage(0), 0xE9);
    EXPECT_EQ(KeycodeMap::consumerUsage(16), 0xCD);
    EXPECT_EQ(KeycodeMap::consumerUsage(20), 0xB4);
    for (const std::int64_t type : {-1, 4, 14, 21, 1 << 16})
        EXPECT_EQ(KeycodeMap::consumerUsage(type), std::nullopt) << type;
}

TEST(KeycodeMap, KeepsFourModifiersOfTheFlags) {
    EXPECT_EQ(KeycodeMap::modifierByte(EventFlags::control | EventFlags::command), 0x09);
    EXPECT_EQ(KeycodeMap::modifierByte(EventFlags::shift | EventFlags::option), 0x06);
    EXPECT_EQ(KeycodeMap::modifierByte(EventFlags::alphaShift | 0x800000 | 0xFF), 0);
}

/// What a US keyboard types: without Shift, then with it, key for key.
TEST(KeycodeMap, TypesWhatAUsKeyboardTypes) {
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyz1234567890-=[]\\;'`,./ \t\n";
    constexpr std::string_view shifted = "ABCDEFGHIJKLMNOPQRSTUVWXYZ!@#$%^&*()_+{}|:\"~<>?";
    const std::map<char, std::uint8_t> irregular{
        {'-', 0x2D}, {'=', 0x2E},  {'[', 0x2F},  {']', 0x30}, {'\\', 0x31},
        {';', 0x33}, {'\'', 0x34}, {'`', 0x35},  {',', 0x36}, {'.', 0x37},
        {'/', 0x38}, {' ', 0x2C},  {'\t', 0x2B}, {'\n', 0x28}};
    std::size_t typed = 0;
    for (std::size_t i = 0; i < plain.size(); ++i) {
        const auto it = irregular.find(plain[i]);
        const auto usage = it != irregular.end() ? it->second : static_cast<std::uint8_t>(0x04 + i);
        EXPECT_EQ(KeycodeMap::usbKeypress(static_cast<std::uint8_t>(plain[i])),
                  (KeycodeMap::Keypress{0, usage}))
            << plain[i];
        ++typed;
        if (i >= shifted.size()) continue;
        EXPECT_EQ(KeycodeMap::usbKeypress(static_cast<std::uint8_t>(shifted[i])),
                  (KeycodeMap::Keypress{0x02, usage}))
            << shifted[i];
        ++typed;
    }
    for (int byte = 0; byte < 256; ++byte)
        if (KeycodeMap::usbKeypress(static_cast<std::uint8_t>(byte))) --typed;
    EXPECT_EQ(typed, 0U) << "nothing else has a keypress";
}

std::string typeable(std::string_view text, std::size_t limit = 1'000) {
    const auto bytes = KeycodeMap::asciiBytes(text, limit);
    return {bytes.begin(), bytes.end()};
}

TEST(KeycodeMap, MakesTextTypeable) {
    EXPECT_EQ(typeable("a\r\nb\rc\n\r\r\nd\t"), "a\nb\nc\n\n\nd\t");
    EXPECT_EQ(typeable("\u201CHi\u201D \u201E\u2018\u2019\u201A"), "\"Hi\" \"'''");
    EXPECT_EQ(typeable("\u2014\u2013\u2012\u2026\u2022\u00A0."), "---...* .");
    EXPECT_EQ(typeable("caf\u00E9 cafe\u0301 \uFF21\uFF01"), "cafe cafe A!");
    EXPECT_EQ(typeable("\u20AC\U0001F600\u00BD\uFB01\u00DF\x7F\x1B"), "");
    EXPECT_EQ(typeable("a\xFF"
                       "b\xE2\x80"),
              "ab")
        << "no UTF-8";
}

TEST(KeycodeMap, KeepsApartWhatIsWorkedOutOnce) {
    // The distance is a power of two, as the size of any table would be.
    EXPECT_EQ(typeable("\u00E9\u04E9\u00E9\u10E9\u201C\u00E9\U000100E9"), "ee\"e");
}

TEST(KeycodeMap, StopsAtTheLimitAndDoesNotCountWhatIsLeftOut) {
    EXPECT_EQ(typeable("abc", 2), "ab");
    EXPECT_EQ(typeable("a\u20ACbc", 2), "ab");
    EXPECT_EQ(typeable("a\u2026", 3), "a..");
    EXPECT_EQ(typeable("\r\na\r\n\u00E9\u00E9", 4), "\na\ne");
    EXPECT_EQ(typeable("a", 0), "");
}

} // namespace
} // namespace quenthisar
