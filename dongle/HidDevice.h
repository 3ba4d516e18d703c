// SPDX-License-Identifier: MIT
#pragma once

#include "InputSink.h"
#include "Payload.h"

#include <cstdint>
#include <vector>

namespace quenthisar::dongle {

/// The dongle's USB side: keyboard, mouse and media keys. Reports are states, so each one is
/// compared with the one before: what is gone is released, what is new is pressed.
class HidDevice {
public:
    explicit HidDevice(InputSink& target) : sink(target) {}

    /// A probe or a malformed payload changes nothing.
    void apply(const Report& report);
    void releaseAll();

private:
    void keyboard(const KeyboardReport& report);
    void mouse(const MouseReport& report);
    void consumer(const ConsumerReport& report);
    /// Makes `wanted` what is held.
    void changeKeys(std::vector<std::uint8_t>& held);

    InputSink& sink;
    std::vector<std::uint8_t> modifiers; // Linux key codes, in order of pressing
    std::vector<std::uint8_t> keys;
    std::vector<std::uint8_t> mediaKeys;
    std::vector<std::uint8_t> wanted; // a member for its memory
    std::uint8_t buttons = 0;
};

} // namespace quenthisar::dongle
