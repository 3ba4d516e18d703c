// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/DesktopSpace.h"
#include "Linux/MotionPacer.h"
#include "Linux/XConnection.h"
#include "Linux/XEventPump.h"
#include "Linux/XHotkeyGrabs.h"
#include "Linux/XInputGrab.h"
#include "Linux/XKeyboard.h"
#include "Linux/XPointers.h"
#include "Linux/XTestMotion.h"
#include "Platform/EventTap.h"

#include <bitset>
#include <functional>
#include <memory>
#include <optional>

namespace quenthisar {

/// The session's input over one connection: what it does while the connection lasts. Main thread.
class XInputLink {
public:
    struct Handlers {
        /// From the main loop only, never inside a call.
        std::function<void(const TapEvent&)> deliver;
        std::function<void(const HotkeyIdentity&)> pressHotkey;
        std::function<void()> refusedForLong;
        /// Once, from the main loop, when the connection is lost. Nothing is delivered after it.
        std::function<void()> lost;
    };

    /// None when no server answers, or it lacks XInput 2.2, XFixes 5 or XKB. `space` outlives it.
    static std::unique_ptr<XInputLink> open(const DesktopSpace& space, Handlers handlers);

    /// Whether `open` would find all it needs at this moment.
    static bool isSupported();

    bool isLost() const { return connection->isLost(); }

    /// Whether motion is delivered while nothing is frozen.
    void listen(bool on);
    /// Holds the pointer, and takes all input until `thaw`.
    void freeze();
    void thaw();
    void setHidden(bool on);

    /// False when another client has the combination. Waits for the server.
    bool addHotkey(const Hotkey& hotkey);

    /// Event flags of the modifiers that are on.
    std::uint64_t flags() { return keyboard.flags(); }
    /// A resource of the connection while it holds the input, else 0.
    std::uint32_t holder() const { return grab.resource(); }

private:
    XInputLink(std::unique_ptr<XConnection> opened, const DesktopSpace& desktop, Handlers actions);

    bool negotiate();
    void selectEvents(bool everything);
    void flush();

    void take(const xcb_generic_event_t& event);
    void takeInput(const xcb_ge_generic_event_t& event);
    bool isOurs(XPointers::DeviceId master) const;
    void takeRawMotion(const xcb_input_raw_motion_event_t& event);
    void takeRawButton(const xcb_input_raw_button_press_event_t& event);
    void takeButton(std::uint32_t button, bool isDown);
    void takeKey(std::uint32_t keyCode, bool isDown);
    void takeHotkey(const xcb_input_key_press_event_t& event);
    void takeModifiers();

    void queryPointer(XPointers::DeviceId pointer);
    bool takePointerReply();

    FineMotion xtestMotion(const xcb_input_raw_motion_event_t& event);
    std::uint32_t logicalButton(const xcb_input_raw_button_press_event_t& event) const;

    /// Delivers what is no motion, after the motion before it.
    void deliver(const TapEvent& event);
    void deliverMotion(const std::optional<MotionPacer::Delta>& delta);
    void deliverDueMotion();
    void schedulePacer();

    const std::unique_ptr<XConnection> connection;
    const DesktopSpace& space;
    Handlers handlers;
    XEventPump pump;
    XKeyboard keyboard;
    XPointers pointers;
    XInputGrab grab;
    XHotkeyGrabs hotkeys;
    QTimer renewal; // of the hotkeys: a new keymap comes in several events
    XTestMotion xtest;
    MotionPacer pacer;
    QTimer pacerTimer;
    OldestSequence oldest;
    std::uint8_t inputOpcode = 0;
    bool listening = false, hidden = false;

    std::optional<unsigned> pendingQuery; // its sequence number
    MotionPacer::Clock::time_point lastQuery{};
    std::optional<XPointers::DeviceId> nextQuery;
    Point lastLocation;

    std::uint32_t buttonsDown = 0; // bit n is button n
    std::uint64_t lastFlags = 0;
    std::bitset<256> keysDown; // those that are no modifiers, as delivered
};

} // namespace quenthisar
