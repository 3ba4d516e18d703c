// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <variant>

namespace quenthisar::dongle {

/// Fifteen zero bytes: the host asks whether the link takes writes.
struct Probe {};

/// What is held down, whole: whatever isn't named is up.
struct KeyboardReport {
    std::uint8_t modifiers = 0;           // bit 0 Control, 1 Shift, 2 Alt, 3 GUI, all left
    std::array<std::uint8_t, 6> usages{}; // Keyboard/Keypad page; 0 for none
    bool operator==(const KeyboardReport&) const = default;
};

struct MouseReport {
    std::uint8_t buttons = 0; // bit 0 left, 1 right, 2 middle; whatever isn't set is up
    int dx = 0;               // relative, to the right
    int dy = 0;               // relative, downwards
    int wheel = 0;            // lines, upwards
};

/// `usage` of the Consumer page that is held; 0 for none.
struct ConsumerReport {
    std::uint16_t usage = 0;
};

struct Malformed {
    std::string reason;
};

using Report = std::variant<Probe, KeyboardReport, MouseReport, ConsumerReport, Malformed>;

/// Strict: a byte or bit that must be zero and isn't makes the payload malformed.
Report decode(std::span<const std::uint8_t> bytes);

/// One line for people and tests, such as "keyboard modifiers=shift keys=a,enter",
/// "mouse buttons=left dx=-5 dy=3 wheel=0", "consumer usage=mute", "probe", "malformed length 3".
std::string describe(const Report& report);

} // namespace quenthisar::dongle
