// SPDX-License-Identifier: MIT
#include "HidDevice.h"

#include "HidUsages.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace quenthisar::dongle {

namespace {

// A mouse's wheel is a signed byte on USB.
constexpr int maximumClicks = 127;

bool contains(const std::vector<std::uint8_t>& codes, std::uint8_t code) {
    return std::ranges::find(codes, code) != codes.end();
}

} // namespace

void HidDevice::changeKeys(std::vector<std::uint8_t>& held) {
    std::erase_if(held, [&](std::uint8_t code) {
        if (contains(wanted, code)) return false;
        sink.key(code, false);
        return true;
    });
    for (const auto code : wanted) {
        if (contains(held, code)) continue;
        sink.key(code, true);
        held.push_back(code);
    }
}

// Modifiers come first, as their byte does in a keyboard's report.
void HidDevice::keyboard(const KeyboardReport& report) {
    wanted.clear();
    for (unsigned bit = 0; bit < 4; ++bit)
        if ((report.modifiers >> bit & 1U) != 0) wanted.push_back(modifierKeyCode(bit));
    changeKeys(modifiers);

    wanted.clear();
    for (const auto usage : report.usages)
        if (const auto code = keyCode(usage)) wanted.push_back(*code);
    changeKeys(keys);
    // All keys up lets go of a media key, too: a host need not know of it.
    if (report == KeyboardReport{}) consumer({});
}

void HidDevice::mouse(const MouseReport& report) {
    constexpr std::array<std::uint8_t, 3> numbers{1, 3, 2};
    for (unsigned bit = 0; bit < numbers.size(); ++bit) {
        const bool down = (report.buttons >> bit & 1U) != 0;
        if (down != ((buttons >> bit & 1U) != 0)) sink.button(numbers[bit], down);
    }
    buttons = report.buttons;
    if (report.dx != 0 || report.dy != 0) sink.move(report.dx, report.dy);
    const std::uint8_t wheelButton = report.wheel > 0 ? 4 : 5;
    for (int i = std::min(std::abs(report.wheel), maximumClicks); i > 0; --i) {
        sink.button(wheelButton, true);
        sink.button(wheelButton, false);
    }
}

void HidDevice::consumer(const ConsumerReport& report) {
    wanted.clear();
    if (const auto code = consumerKeyCode(report.usage)) wanted.push_back(*code);
    changeKeys(mediaKeys);
}

void HidDevice::apply(const Report& report) {
    if (const auto* state = std::get_if<KeyboardReport>(&report)) keyboard(*state);
    if (const auto* state = std::get_if<MouseReport>(&report)) mouse(*state);
    if (const auto* state = std::get_if<ConsumerReport>(&report)) consumer(*state);
    sink.flush();
}

void HidDevice::releaseAll() {
    keyboard({}); // media keys, too
    mouse({});
    sink.flush();
}

} // namespace quenthisar::dongle
