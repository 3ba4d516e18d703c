// SPDX-License-Identifier: MIT
// Chords as the user or a settings file has them, and the operations on text under them.
#include "Capture/TargetMacro.h"
#include "Support/Text.h"

#include "Target.h"

#include <string>

namespace quenthisar {

namespace {

using fuzz::require;

void checkTrimming(std::string_view text) {
    for (const auto trim : {Text::trimmedOfBlanks, Text::trimmedOfWhitespaceAndNewlines}) {
        const auto trimmed = trim(text);
        require(trimmed.empty() || (trimmed.data() >= text.data() &&
                                    trimmed.data() + trimmed.size() <= text.data() + text.size()),
                "trims to something else");
        require(trim(trimmed) == trimmed, "does not trim all at once");
        require(trim(" \t" + std::string{trimmed} + "\t ") == trimmed, "leaves blanks");
    }
}

} // namespace

void fuzz::run(Bytes input) {
    const auto text = textOf(input);
    checkTrimming(text);
    const auto lower = Text::lowercased(text);
    require(lower.size() <= 2 * text.size(), "grows a text beyond measure");
    for (std::string_view rest = text; !rest.empty();) {
        const auto before = rest.size();
        const auto scalar = Text::takeScalar(rest);
        require(rest.size() < before, "takes nothing");
        require(scalar >= -1 && scalar <= 0x10FFFF, "takes what is no scalar");
    }

    const auto chord = TargetMacro::parse(text);
    if (chord) {
        require(chord->modifiers <= 0x0F, "has unknown modifiers");
        require(chord->keycode >= 0x04 && chord->keycode <= 0x52, "has an unknown key");
    }
    require(TargetMacro::parse(lower) == chord, "depends on the case");
    require(TargetMacro::parse(" + " + std::string{text} + " +") == chord, "counts what is empty");
    // The last word that is no modifier decides.
    const auto withKey = TargetMacro::parse(std::string{text} + "+ctrl+f5");
    require(withKey && withKey->keycode == 0x3E && (withKey->modifiers & 0x01) != 0 &&
                (!chord || withKey->modifiers == (chord->modifiers | 0x01)),
            "does not take the last key");
}

} // namespace quenthisar
