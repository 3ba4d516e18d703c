// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace quenthisar {

/// What a key of an X keyboard is on the host, by its position.
struct HostKey {
    enum class Kind {
        key,       // an ordinary key; code is the host's virtual key code
        media,     // a media key; code is its key type
        swallowed, // a media key that the host has no counterpart for
    };
    Kind kind = Kind::key;
    std::uint16_t code = 0;

    bool operator==(const HostKey&) const = default;
};

/// The code of ordinary keys that have no counterpart on the host. No table holds it.
inline constexpr std::uint16_t unknownKeyCode = 0xFFFF;

/// `xKeyCode` is the kernel's code plus 8, as every X server on Linux numbers keys.
HostKey hostKey(std::uint32_t xKeyCode);

} // namespace quenthisar
