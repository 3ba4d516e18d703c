// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace quenthisar {

/// One message to a dongle, as it goes over the air. Byte 0 is the kind.
using Payload = std::array<std::uint8_t, 15>;

/// The one place that knows the layout of payloads. Callable from any thread.
namespace Report {

enum class Kind : std::uint8_t { pairingProbe = 0, keyboard = 1, mouse = 2, consumer = 4 };

struct MouseFields {
    std::uint8_t buttons = 0; // bit 0 left, bit 1 right, bit 2 any other
    std::int64_t dx = 0;      // relative, to the right positive
    std::int64_t dy = 0;      // relative, downwards positive
    std::int64_t wheel = 0;   // lines, upwards positive
};

/// `modifiers`: bit 0 Control, 1 Shift, 2 Option, 3 Command. `keys`: usages of the HID
/// Keyboard/Keypad page (0x07); the first six count.
Payload keyboard(std::uint8_t modifiers, std::span<const std::uint8_t> keys);

/// Every key and modifier released.
Payload allKeysUp();

/// Values outside 16 bits saturate.
Payload mouse(const MouseFields& fields);

/// `usage` of the HID Consumer page (0x0C); 0 is a release.
Payload consumer(std::int64_t usage);

inline constexpr Payload pairingProbe{};

bool isKind(Kind kind, const Payload& payload);

/// Whether `payload` is a mouse report that does nothing but move an ordinary distance: the buttons
/// are those of `previousMouse`, the mouse report before it, and the wheel stands still. A move
/// into a corner (7,680 or more) is none.
bool isPureMotion(const Payload& previousMouse, const Payload& payload);

/// The mouse report with the same buttons that neither moves nor scrolls.
Payload atRest(const Payload& mouse);

} // namespace Report
} // namespace quenthisar
