// SPDX-License-Identifier: MIT
#include "Capture/KeycodeMap.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>

namespace quenthisar {
namespace {

/// What a US keyboard types, by usage from 0x04 on: without Shift, then with it, key for key.
TEST(KeycodeMap, TypesWhatAUsKeyboardTypes) {
    // A blank in place of a key is one that types nothing.
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyz1234567890\n  \t -=[]\\ ;'`,./";
    constexpr std::string_view shifted = "ABCDEFGHIJKLMNOPQRSTUVWXYZ!@#$%^&*()     _+{}| :\"~<>?";
    std::map<int, std::optional<KeycodeMap::Keypress>> expected{{' ', {{0, 0x2C}}}};
    for (std::size_t i = 0; i < plain.size(); ++i) {
        const auto usage = static_cast<std::uint8_t>(0x04 + i);
        if (plain[i] != ' ') expected[plain[i]] = {{0, usage}};
        if (shifted[i] != ' ') expected[shifted[i]] = {{0x02, usage}};
    }
    for (int byte = 0; byte < 256; ++byte)
        EXPECT_EQ(KeycodeMap::usbKeypress(static_cast<std::uint8_t>(byte)), expected[byte]) << byte;
}

std::string typeable(std::string_view text) {
    const auto bytes = KeycodeMap::asciiBytes(text, 12);
    return {bytes.begin(), bytes.end()};
}

TEST(KeycodeMap, MakesTextTypeable) {
    EXPECT_EQ(typeable("a\r\nb\rc\n\r\r\nd\t"), "a\nb\nc\n\n\nd\t");
    EXPECT_EQ(typeable("\u201CHi\u201D \u201E\u2018\u2019\u201A"), "\"Hi\" \"'''");
    EXPECT_EQ(typeable("\u2014\u2013\u2012\u2026\u2022\u00A0."), "---...* .");
    EXPECT_EQ(typeable("caf\u00E9 cafe\u0301 \uFF21\uFF01 cut off"), "cafe cafe A!");
    EXPECT_EQ(typeable("\u20AC\U0001F600\u00BD\uFB01\u00DF\x7F\x1B"), "");
    EXPECT_EQ(typeable("a\xFF"
                       "b\xE2\x80"),
              "ab")
        << "no UTF-8";
    // What is worked out once is kept apart by powers of two, as the size of any table would be.
    EXPECT_EQ(typeable("\u00E9\u04E9\u00E9\u10E9\u201C\u00E9\U000100E9"), "ee\"e");
}

} // namespace
} // namespace quenthisar
