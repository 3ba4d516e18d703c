// SPDX-License-Identifier: MIT
#include "Capture/TargetMacro.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

TEST(TargetMacro, ReadsChordsAsPeopleWriteThem) {
    using Chord = TargetMacro::Chord;
    for (const auto& [text, expected] : {
             std::pair{" Cmd\t+\xC2\xA0L ", Chord{0x08, 0x0F}},
             std::pair{"ctrl+alt+delete", Chord{0x05, 0x2A}},
             std::pair{"ctrl+alt+del", Chord{0x05, 0x4C}},
             std::pair{"A", Chord{0, 0x04}}, // no Shift
             std::pair{"shift+option+windows+control+z", Chord{0x0F, 0x1D}},
             std::pair{"cmd+cmd+l", Chord{0x08, 0x0F}}, std::pair{"0", Chord{0, 0x27}},
             std::pair{"1", Chord{0, 0x1E}}, std::pair{"f12", Chord{0, 0x45}},
             std::pair{"++cmd++l++", Chord{0x08, 0x0F}},
             std::pair{"a+b", Chord{0, 0x05}}, // the last one counts
             std::pair{"foo+a", Chord{0, 0x04}}, std::pair{"l+cmd", Chord{0x08, 0x0F}},
             std::pair{"cmd+\xE2\x84\xAA", Chord{0x08, 0x0E}}, // the Kelvin sign is a K
         })
        EXPECT_TRUE(TargetMacro::parse(text) == expected) << text;
    for (const char* text : {"", "+", "f13", "cmd+shift", "cmd++", "cmd+/", "a+foo", "cmd+l\n",
                             "cmd+\xC4\xB0", "cmd+\xFF"})
        EXPECT_FALSE(TargetMacro::parse(text)) << text;
}

} // namespace
} // namespace quenthisar
