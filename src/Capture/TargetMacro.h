// SPDX-License-Identifier: MIT
#pragma once

#include "BLE/DongleManager.h"
#include "Platform/MainQueue.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace quenthisar {

/// Key chords written as text, such as cmd+l or ctrl+alt+delete.
namespace TargetMacro {

struct Chord {
    std::uint8_t modifiers = 0; // as in a keyboard report
    std::uint8_t keycode = 0;   // usage of the HID Keyboard/Keypad page

    bool operator==(const Chord&) const = default;
};

/// Words between plus signs in any case: modifiers and one key. The last word that is no modifier
/// decides; none if it is no key either, or if there is none.
std::optional<Chord> parse(std::string_view text);

/// Presses the chord at once and releases it 0.05 s later; nothing happens for a text that is no
/// chord. `via` must live until then. Main thread.
void send(std::string_view text, const Uuid& to, DongleManager& via, MainQueue& queue);

} // namespace TargetMacro
} // namespace quenthisar
