// SPDX-License-Identifier: MIT
#include "Support/Text.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using namespace std::string_view_literals;

TEST(Text, StandsOnOneLineAndTurnsNothingThatFollows) {
    EXPECT_EQ(Text::onOneLine(" two\n\xE2\x80\xA8lines \t\x01 more\0"sv), " two  lines    more ");
    EXPECT_EQ(Text::onOneLine("\xE2\x80\xAE"
                              "exe.\xE2\x81\xA6txt\xE2\x80\xAC\xE2\x81\xA9"),
              "exe.txt");
    EXPECT_EQ(Text::onOneLine("\xD7\xA9\xE2\x80\x8F \xFF\xF0\x9F\x8C\x8D"),
              "\xD7\xA9\xE2\x80\x8F \xEF\xBF\xBD\xF0\x9F\x8C\x8D");
    // Without the mark in its middle, it would be one itself.
    EXPECT_EQ(Text::onOneLine("\xE2\x80\xE2\x80\xAE\xAE").find("\xE2\x80\xAE"), std::string::npos);
}

} // namespace
} // namespace quenthisar
