// SPDX-License-Identifier: MIT
#include "Capture/TargetMacro.h"

#include "unit/TakeoverFixture.h"

#include <gtest/gtest.h>

namespace quenthisar {

void PrintTo(const TargetMacro::Chord& chord, std::ostream* out) {
    *out << '(' << int{chord.modifiers} << ", " << int{chord.keycode} << ')';
}

namespace {

using namespace std::chrono_literals;
using TargetMacro::Chord;

struct ChordCase {
    const char* name;
    const char* text;
    std::optional<Chord> expected;
};

class ChordText : public testing::TestWithParam<ChordCase> {};

TEST_P(ChordText, Parses) {
    EXPECT_EQ(TargetMacro::parse(GetParam().text), GetParam().expected);
}

constexpr auto nothing = std::nullopt;

INSTANTIATE_TEST_SUITE_P(
    TargetMacro, ChordText,
    testing::Values(
        ChordCase{"Plain", "cmd+l", Chord{0x08, 0x0F}},
        ChordCase{"CapitalsAndBlanks", " Cmd\t+\xC2\xA0L ", Chord{0x08, 0x0F}},
        ChordCase{"DeleteIsBackspace", "ctrl+alt+delete", Chord{0x05, 0x2A}},
        ChordCase{"DelIsForwardDelete", "ctrl+alt+del", Chord{0x05, 0x4C}},
        ChordCase{"CapitalIsNoShift", "A", Chord{0, 0x04}},
        ChordCase{"EveryModifier", "shift+option+windows+control+z", Chord{0x0F, 0x1D}},
        ChordCase{"ModifierTwice", "cmd+cmd+l", Chord{0x08, 0x0F}},
        ChordCase{"Digits", "0", Chord{0, 0x27}}, ChordCase{"One", "1", Chord{0, 0x1E}},
        ChordCase{"Nine", "9", Chord{0, 0x26}}, ChordCase{"F12", "f12", Chord{0, 0x45}},
        ChordCase{"F13", "f13", nothing}, ChordCase{"ModifiersOnly", "cmd+shift", nothing},
        ChordCase{"Empty", "", nothing}, ChordCase{"Plus", "+", nothing},
        ChordCase{"PlusesEverywhere", "++cmd++l++", Chord{0x08, 0x0F}},
        ChordCase{"PlusKeyHasNoName", "cmd++", nothing}, ChordCase{"Punctuation", "cmd+/", nothing},
        ChordCase{"LastKeyWins", "a+b", Chord{0, 0x05}},
        ChordCase{"LastUnknownWins", "a+foo", nothing}, ChordCase{"KeyLast", "foo+a", Chord{0, 4}},
        ChordCase{"ModifierAfterTheKey", "l+cmd", Chord{0x08, 0x0F}},
        ChordCase{"LineBreakIsNotTrimmed", "cmd+l\n", nothing},
        ChordCase{"KelvinSignIsK", "cmd+\xE2\x84\xAA", Chord{0x08, 0x0E}},
        ChordCase{"DottedCapitalIIsNoI", "cmd+\xC4\xB0", nothing},
        ChordCase{"NoUtf8", "cmd+\xFF", nothing}),
    [](const auto& row) { return row.param.name; });

TEST(TargetMacro, PressesAtOnceAndReleasesAfterFiftyMilliseconds) {
    TakeoverFixture f;
    TargetMacro::send("cmd+l", A, f.manager, f.clock);
    EXPECT_EQ(f.sent(), Payloads{bytes({1, 8, 0, 0, 0, 0, 0, 0, 0, 0x0F})});
    f.clock.advance(49ms);
    EXPECT_TRUE(f.sent().empty());
    f.clock.advance(1ms);
    EXPECT_EQ(f.sent(), Payloads{bytes({1})});
    TargetMacro::send("cmd", A, f.manager, f.clock);
    f.clock.advance(1s);
    EXPECT_TRUE(f.sent().empty());
}

} // namespace
} // namespace quenthisar
