// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/XInputSession.h"
#include "Platform/HotkeyService.h"

namespace quenthisar {

/// Hotkeys of an X session. They share the connection of the tap, so that a takeover's grab and a
/// hotkey's never meet as strangers.
class XHotkeys final : public HotkeyService {
public:
    /// `input` outlives the hotkeys.
    explicit XHotkeys(XInputSession& input) : session(input) {}

    void installEventHandler(Handler handler) override {
        session.setHotkeyHandler(std::move(handler));
    }
    std::optional<HotkeyRef> registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                 const HotkeyIdentity& identity) override {
        if (!session.addHotkey({keyCode, modifiers, identity})) return std::nullopt;
        return ++registered;
    }

private:
    XInputSession& session;
    HotkeyRef registered = 0;
};

} // namespace quenthisar
