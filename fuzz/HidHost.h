// SPDX-License-Identifier: MIT
#pragma once

#include "Protocol/Report.h"
#include "dongle/Payload.h"

#include <cstdint>
#include <string>
#include <variant>

namespace quenthisar {

/// A target as its dongle sees it: what is held down there, and where its pointer went. It decodes
/// payloads by the dongle's own code.
class HidHost {
public:
    /// What is wrong with the payload; empty if nothing is.
    std::string take(const Payload& payload) {
        const auto report = dongle::decode(payload);
        if (const auto* malformed = std::get_if<dongle::Malformed>(&report))
            return malformed->reason;
        if (std::holds_alternative<dongle::Probe>(report)) return "a probe without response";
        if (const auto* state = std::get_if<dongle::KeyboardReport>(&report)) keyboard = *state;
        if (const auto* state = std::get_if<dongle::ConsumerReport>(&report)) media = *state;
        if (const auto* state = std::get_if<dongle::MouseReport>(&report)) {
            mouse = *state;
            x += state->dx;
            y += state->dy;
        }
        return {};
    }

    /// What a dongle does when its link drops.
    void releaseAll() {
        keyboard = {};
        mouse = {};
        media = {};
    }

    bool holdsKeysOrButtons() const {
        return keyboard.modifiers != 0 || mouse.buttons != 0 ||
               keyboard.usages != decltype(keyboard.usages){};
    }

    dongle::KeyboardReport keyboard;
    dongle::MouseReport mouse; // the last one
    dongle::ConsumerReport media;
    std::int64_t x = 0, y = 0;
};

} // namespace quenthisar
