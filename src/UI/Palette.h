// SPDX-License-Identifier: MIT
#pragma once

#include "Support/Uuid.h"

#include <array>
#include <cstdint>

namespace quenthisar {

/// A standard colour by its name; how it looks is the desktop's business, light or dark.
enum class NamedColor : std::uint8_t { green, orange, purple, pink, teal, red, yellow };

/// Gives every dongle its colour, the same everywhere and on every run.
namespace Palette {

inline constexpr std::array colors{NamedColor::green, NamedColor::orange, NamedColor::purple,
                                   NamedColor::pink,  NamedColor::teal,   NamedColor::red,
                                   NamedColor::yellow};

NamedColor color(const Uuid& forDongle);

} // namespace Palette
} // namespace quenthisar
