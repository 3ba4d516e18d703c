// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/XConnection.h"
#include "Linux/XKeyboard.h"
#include "Platform/HotkeyService.h"

#include <xcb/xinput.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace quenthisar {

/// A hotkey in the service's own words.
struct Hotkey {
    std::uint32_t keyCode = 0;   // virtual key code
    std::uint32_t modifiers = 0; // of `HotkeyModifiers`
    HotkeyIdentity identity;
};

/// The passive grabs of hotkeys on one connection, in terms of the keymap of the moment.
class XHotkeyGrabs {
public:
    XHotkeyGrabs(const XConnection& server, XKeyboard& keys) : connection(server), keyboard(keys) {}

    /// False, with nothing grabbed, when another client has the combination. One that the keymap
    /// has no modifiers for is kept for a later keymap. Waits for the server.
    bool add(const Hotkey& hotkey);
    /// Grabs all anew, after the keymap has changed.
    void renew();

    /// The hotkey that a key press of a passive grab means; none for a repeat.
    std::optional<HotkeyIdentity> match(const xcb_input_key_press_event_t& press) const;

private:
    struct Grab {
        Hotkey hotkey;
        std::uint8_t keyCode = 0;              // X's
        std::vector<std::uint32_t> masks = {}; // of X's modifier bits, as of the last attempt
        bool isHeld = false;
    };

    bool grab(Grab& next);
    void ungrab(const Grab& old);

    const XConnection& connection;
    XKeyboard& keyboard;
    std::vector<Grab> grabs;
};

} // namespace quenthisar
