// SPDX-License-Identifier: MIT
#include "Support/Text.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using namespace std::string_view_literals;

TEST(Text, TrimsBlanksButNotLineBreaks) {
    EXPECT_EQ(Text::trimmedOfBlanks("  Desk PC\t"), "Desk PC");
    EXPECT_EQ(Text::trimmedOfBlanks(" "), "");
    EXPECT_EQ(Text::trimmedOfBlanks("\n"), "\n");
    EXPECT_EQ(Text::trimmedOfBlanks("\xC2\xA0\xE3\x80\x80x\xE2\x80\x83"), "x");
    EXPECT_EQ(Text::trimmedOfBlanks("\xE2\x80\x8Bx"), "\xE2\x80\x8Bx") << "no width, no blank";
    EXPECT_EQ(Text::trimmedOfBlanks(" \xFF "), "\xFF");
}

TEST(Text, TrimsEverySeparatorAndLineBreak) {
    EXPECT_EQ(Text::trimmedOfWhitespaceAndNewlines(
                  "\n\r\v\f\xC2\x85\xE2\x80\xA8\xE2\x80\xA9\t a b \xE2\x80\xA9\n"),
              "a b");
    EXPECT_EQ(Text::trimmedOfWhitespaceAndNewlines("\0x"sv), "\0x"sv);
    EXPECT_EQ(Text::trimmedOfWhitespaceAndNewlines(" \n"), "");
}

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

TEST(Text, LowersCaseOfAllOfUnicode) {
    EXPECT_EQ(Text::lowercased("CMD+Ä"), "cmd+ä");
    EXPECT_EQ(Text::lowercased("\xE2\x84\xAA"), "k") << "the Kelvin sign";
    EXPECT_EQ(Text::lowercased("\xC4\xB0"), "i\xCC\x87") << "capital I with dot above";
    EXPECT_EQ(Text::lowercased("\xFFX\x80"), "\xFFx\x80");
}

std::u32string folded(std::u32string_view text) {
    std::u32string result;
    for (const char32_t scalar : text)
        Text::appendFolded(static_cast<std::int32_t>(scalar), result);
    return result;
}

TEST(Text, FoldsAccentsInBothFormsAndWidths) {
    EXPECT_EQ(folded(U"caf\u00E9 cafe\u0301 \u1E69"), U"cafe cafe s");
    EXPECT_EQ(folded(U"\uFF21\uFF5A\uFF11\uFF01"), U"Az1!");
    EXPECT_EQ(folded(U"\u212A"), U"K");
    EXPECT_EQ(folded(U"\u00BD\uFB01\u2460\u00B2"), U"\u00BD\uFB01\u2460\u00B2")
        << "other compatibility forms are not spelt out";
    EXPECT_EQ(folded(U"\uAC00\u0416\u4E00"), U"\uAC00\u0416\u4E00") << "nothing to leave out";
    EXPECT_EQ(folded(U"\u20AC\U0001F600"), U"\u20AC\U0001F600");
}

} // namespace
} // namespace quenthisar
