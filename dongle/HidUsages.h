// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace quenthisar::dongle {

/// The key's name as on a US keyboard, such as "a" or "page-up"; "0x87" for a usage without one.
std::string keyName(std::uint8_t usage);
/// The Linux key code (KEY_A and so on) of the key at this position, or none.
std::optional<std::uint8_t> keyCode(std::uint8_t usage);

/// Like the two above, for the Consumer page.
std::string consumerName(std::uint16_t usage);
std::optional<std::uint8_t> consumerKeyCode(std::uint16_t usage);

/// The Linux key code of the left modifier in bit `bit` (0 to 3) of the modifier byte.
std::uint8_t modifierKeyCode(unsigned bit);

/// "0x" and two upper-case digits.
std::string hexByte(unsigned value);

} // namespace quenthisar::dongle
