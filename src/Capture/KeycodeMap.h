// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace quenthisar {

/// The host's keyboard vocabulary in terms of USB HID. Pure functions on constant tables; callable
/// from any thread.
namespace KeycodeMap {

/// One key of a US keyboard with the modifiers that it takes.
struct Keypress {
    std::uint8_t modifier = 0; // as in a keyboard report
    std::uint8_t keycode = 0;  // usage of the HID Keyboard/Keypad page

    bool operator==(const Keypress&) const = default;
};

/// A host virtual key code (a key's position) to a usage of the HID Keyboard/Keypad page. None for
/// modifiers, the numeric keypad, F13 and above and keys of national layouts.
std::optional<std::uint8_t> usage(std::uint16_t forKeyCode);

/// A media key type to a usage of the HID Consumer page.
std::optional<std::int64_t> consumerUsage(std::int64_t forKeyType);

/// The modifier byte of a keyboard report for the flags of an event (`EventFlags`). The right-hand
/// modifiers are sent as the left-hand ones.
std::uint8_t modifierByte(std::uint64_t from);

/// The keypress that types an ASCII character on a US layout. None for control characters other
/// than tab and line feed.
std::optional<Keypress> usbKeypress(std::uint8_t forASCII);

/// What can be typed of a text (UTF-8): at most `limit` bytes, each tab, line feed or 32 to 126.
/// Line ends become line feeds, typographic signs their ASCII forms, letters lose their accents and
/// full-width forms their width; everything else is left out and does not count.
std::vector<std::uint8_t> asciiBytes(std::string_view from, std::size_t limit);

} // namespace KeycodeMap
} // namespace quenthisar
