// SPDX-License-Identifier: MIT
#include "Payload.h"

#include "HidUsages.h"

#include <algorithm>
#include <initializer_list>

namespace quenthisar::dongle {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t length = 15;

bool isZero(Bytes bytes) {
    return std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte == 0; });
}

int int16At(Bytes bytes, std::size_t at) {
    return static_cast<std::int16_t>(bytes[at] << 8 | bytes[at + 1]);
}

Report decodeKeyboard(Bytes bytes) {
    if ((bytes[1] & 0xF0) != 0) return Malformed{"modifiers " + hexByte(bytes[1])};
    if (!isZero(bytes.subspan(2, 7))) return Malformed{"keyboard padding not zero"};
    KeyboardReport report{.modifiers = bytes[1]};
    std::ranges::copy(bytes.subspan(9, 6), report.usages.begin());
    return report;
}

Report decodeMouse(Bytes bytes) {
    if ((bytes[2] & 0xF8) != 0) return Malformed{"buttons " + hexByte(bytes[2])};
    if (bytes[1] != 0 || !isZero(bytes.subspan(9))) return Malformed{"mouse padding not zero"};
    return MouseReport{.buttons = bytes[2],
                       .dx = int16At(bytes, 3),
                       .dy = int16At(bytes, 5),
                       .wheel = int16At(bytes, 7)};
}

Report decodeConsumer(Bytes bytes) {
    if (!isZero(bytes.subspan(1, 2)) || !isZero(bytes.subspan(5)))
        return Malformed{"consumer padding not zero"};
    return ConsumerReport{static_cast<std::uint16_t>(bytes[3] << 8 | bytes[4])};
}

/// The names of the bits that are set, joined by '+'.
std::string bitNames(unsigned bits, std::initializer_list<const char*> names) {
    std::string text;
    for (const char* name : names) {
        if ((bits & 1U) != 0) text.append(text.empty() ? "" : "+").append(name);
        bits >>= 1U;
    }
    return text.empty() ? "none" : text;
}

struct Describe {
    std::string operator()(const Probe& /*probe*/) const { return "probe"; }

    std::string operator()(const KeyboardReport& report) const {
        std::string keys;
        for (const auto usage : report.usages)
            if (usage != 0) keys.append(keys.empty() ? "" : ",").append(keyName(usage));
        return "keyboard modifiers=" +
               bitNames(report.modifiers, {"control", "shift", "alt", "gui"}) +
               " keys=" + (keys.empty() ? "none" : keys);
    }

    std::string operator()(const MouseReport& report) const {
        return "mouse buttons=" + bitNames(report.buttons, {"left", "right", "middle"}) +
               " dx=" + std::to_string(report.dx) + " dy=" + std::to_string(report.dy) +
               " wheel=" + std::to_string(report.wheel);
    }

    std::string operator()(const ConsumerReport& report) const {
        return "consumer usage=" + (report.usage == 0 ? "none" : consumerName(report.usage));
    }

    std::string operator()(const Malformed& malformed) const {
        return "malformed " + malformed.reason;
    }
};

} // namespace

Report decode(std::span<const std::uint8_t> bytes) {
    if (bytes.size() != length) return Malformed{"length " + std::to_string(bytes.size())};
    switch (bytes[0]) {
    case 0: return isZero(bytes) ? Report{Probe{}} : Malformed{"probe not zero"};
    case 1: return decodeKeyboard(bytes);
    case 2: return decodeMouse(bytes);
    case 4: return decodeConsumer(bytes);
    default: return Malformed{"kind " + std::to_string(bytes[0])};
    }
}

std::string describe(const Report& report) {
    return std::visit(Describe{}, report);
}

} // namespace quenthisar::dongle
