// SPDX-License-Identifier: MIT
#include "Protocol/Report.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <limits>

namespace quenthisar::Report {

namespace {

constexpr std::size_t firstKey = 9;
constexpr std::size_t maximumKeys = 6;
constexpr std::size_t buttonsAt = 2, dxAt = 3, dyAt = 5, wheelAt = 7;
constexpr int cornerMove = 7680;

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

int readInt16(const Payload& payload, std::size_t at) {
    return static_cast<std::int16_t>(payload[at] << 8 | payload[at + 1]);
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
    payload[buttonsAt] = fields.buttons;
    writeInt16(payload, dxAt, fields.dx);
    writeInt16(payload, dyAt, fields.dy);
    writeInt16(payload, wheelAt, fields.wheel);
    return payload;
}

Payload consumer(std::int64_t usage) {
    Payload payload = empty(Kind::consumer);
    writeInt16(payload, 3, usage);
    return payload;
}

bool isKind(Kind kind, const Payload& payload) {
    return payload[0] == static_cast<std::uint8_t>(kind);
}

bool isPureMotion(const Payload& previousMouse, const Payload& payload) {
    return isKind(Kind::mouse, payload) && payload[buttonsAt] == previousMouse[buttonsAt] &&
           readInt16(payload, wheelAt) == 0 && std::abs(readInt16(payload, dxAt)) < cornerMove &&
           std::abs(readInt16(payload, dyAt)) < cornerMove;
}

Payload atRest(const Payload& mouse) {
    return Report::mouse({.buttons = mouse[buttonsAt]});
}

} // namespace quenthisar::Report
