// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quenthisar {

/// 128 bits that name a dongle, a profile, a GATT service or a GATT characteristic.
struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    /// Reads the 36 character form, 8-4-4-4-12 hexadecimal digits of either case; nothing else.
    static std::optional<Uuid> parse(std::string_view text);

    /// A version 4 identifier from the system's source of randomness.
    static Uuid random();

    /// The 36 character form in upper case.
    std::string text() const;

    auto operator<=>(const Uuid&) const = default;
};

} // namespace quenthisar

template <>
struct std::hash<quenthisar::Uuid> {
    std::size_t operator()(const quenthisar::Uuid& id) const noexcept;
};
