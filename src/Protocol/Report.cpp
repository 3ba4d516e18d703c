// SPDX-License-Identifier: MIT
#include "Protocol/Report.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace quenthisar::Report {

namespace {

constexpr std::size_t firstKey = 9;
constexpr std::size_t maximumKeys = 6;

Payload empty(Kind kind) {
    return {static_cast<std::uint8_t>(kind)};
}

/// Signed, big-endian, saturated.
void writeInt16(Payload& payload, std::size_t at, std::int64_t value) {
    using Limits = std::numeric_limits<std::int16_t>;
    const auto v = std::clamp<std::int64_t>(value, Limits::min(), Limits::max());
    payload[at] = static_cast<std::uint8_t>(v >> 8 & 0xFF);
    payload[at + 1] = static_cast<std::uint8_t>(v & 0xFF);
}

} // namespace

Payload keyboard(std::uint8_t modifiers, std::span<const std::uint8_t> keys) {
    Payload payload = empty(Kind::keyboard);
    payload[1] = modifiers;
    std::ranges::copy(keys.first(std::min(keys.size(), maximumKeys)), payload.begin() + firstKey);
    return payload;
}

Payload allKeysUp() {
    return keyboard(0, {});
}

Payload mouse(const MouseFields& fields) {
    Payload payload = empty(Kind::mouse);
    payload[2] = fields.buttons;
    writeInt16(payload, 3, fields.dx);
    writeInt16(payload, 5, fields.dy);
    writeInt16(payload, 7, fields.wheel);
    return payload;
}

Payload consumer(std::int64_t usage) {
    Payload payload = empty(Kind::consumer);
    writeInt16(payload, 3, usage);
    return payload;
}

} // namespace quenthisar::Report
