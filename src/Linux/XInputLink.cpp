// SPDX-License-Identifier: MIT
#include "Linux/XInputLink.h"

#include "Linux/HostKeys.h"
#include "Linux/InputPoll.h"

#include <xcb/xcbext.h>

#include <algorithm>
#include <utility>

namespace quenthisar {

namespace {

using std::chrono::milliseconds;

constexpr double unitsPerPixel = 0x10000; // of a pointer's position

template <class Event>
const Event& as(const auto& event) {
    return reinterpret_cast<const Event&>(event);
}

/// Between two questions where the pointer is: a mouse of 250 Hz and more. Longer than a rest.
constexpr std::chrono::milliseconds fastMotion{5};

constexpr std::uint32_t bit(std::uint32_t button) {
    return button < 32 ? 1U << button : 0;
}

constexpr EventType motionType(std::uint32_t buttonsDown) {
    constexpr auto scrolling = bit(4) | bit(5) | bit(6) | bit(7);
    if (buttonsDown & bit(1)) return EventType::leftMouseDragged;
    if (buttonsDown & bit(3)) return EventType::rightMouseDragged;
    if (buttonsDown & ~scrolling) return EventType::otherMouseDragged;
    return EventType::mouseMoved;
}

std::uint32_t buttonsIn(const xcb_input_xi_query_pointer_reply_t& pointer) {
    return pointer.buttons_len > 0 ? *xcb_input_xi_query_pointer_buttons(&pointer) : 0;
}

XTestMotion::Pixel pixelOf(const xcb_input_xi_query_pointer_reply_t& pointer) {
    return {pointer.root_x >> 16, pointer.root_y >> 16};
}

bool changesDevices(const xcb_ge_generic_event_t& event) {
    return event.event_type == XCB_INPUT_HIERARCHY ||
           (event.event_type == XCB_INPUT_DEVICE_CHANGED &&
            as<xcb_input_device_changed_event_t>(event).reason ==
                XCB_INPUT_CHANGE_REASON_DEVICE_CHANGE);
}

} // namespace

void XInputLink::listen(bool on) {
    if (std::exchange(listening, on) == on) return;
    selectEvents(grab.isActive());
    flush();
}

void XInputLink::freeze() {
    if (grab.isActive()) return;
    if (const auto query = std::exchange(pendingQuery, std::nullopt))
        xcb_discard_reply(connection->get(), *query);
    nextQuery.reset();
    keyboard.keepLocks();
    // Before the grabs are tried: nothing may be missed while they are pending.
    selectEvents(true);
    if (!grab.begin(pointers.masters())) return;
    pump.setPrompt(true);
    oldest.set(grab.firstSequence());
    flush();
    pacer.clear();
    xtest.start(pixelOf(grab.heldPointer()));
    buttonsDown = buttonsIn(grab.heldPointer());
    lastFlags = keyboard.flags();
    keysDown.reset();
}

void XInputLink::thaw() {
    if (!grab.isActive()) return;
    pump.setPrompt(false);
    grab.end();
    keyboard.restoreLocks();
    selectEvents(false);
    flush();
    pacer.clear();
    pacerTimer.stop();
}

void XInputLink::setHidden(bool on) {
    if (std::exchange(hidden, on) == on) return;
    if (on)
        xcb_xfixes_hide_cursor(connection->get(), connection->root());
    else
        xcb_xfixes_show_cursor(connection->get(), connection->root());
    flush();
}

bool XInputLink::addHotkey(const Hotkey& hotkey) {
    const bool isAdded = hotkeys.add(hotkey);
    pump.drainSoon();
    return isAdded;
}

void XInputLink::flush() {
    connection->flush();
    pump.drainSoon();
}

void XInputLink::take(const xcb_generic_event_t& event) {
    if (event.response_type == XCB_CONFIGURE_NOTIFY) {
        const auto& root = as<xcb_configure_notify_event_t>(event);
        pointers.resize(root.width, root.height);
        return;
    }
    if ((event.response_type & 0x7F) != XCB_GE_GENERIC) {
        switch (keyboard.take(event)) {
        case XKeyboard::Change::none: break;
        case XKeyboard::Change::modifiers: takeModifiers(); break;
        case XKeyboard::Change::keymap:
            renewal.start(0);
            InputPoll::stir();
            break;
        }
        return;
    }
    const auto& input = as<xcb_ge_generic_event_t>(event);
    if (input.extension != inputOpcode) return;
    if (changesDevices(input))
        pointers.read(*connection);
    else
        takeInput(input);
}

void XInputLink::takeInput(const xcb_ge_generic_event_t& event) {
    // What happened before the pointer was held belongs to this computer.
    if (grab.isActive() && oldest.isBefore(event.full_sequence)) {
        // Devices with positions go on from there all the same.
        if (event.event_type == XCB_INPUT_RAW_MOTION)
            pointers.motion(as<xcb_input_raw_motion_event_t>(event));
        return;
    }
    switch (event.event_type) {
    case XCB_INPUT_RAW_MOTION: takeRawMotion(as<xcb_input_raw_motion_event_t>(event)); break;
    // While the pointer is ours the server sends no raw buttons, and before that no others.
    case XCB_INPUT_RAW_BUTTON_PRESS:
    case XCB_INPUT_RAW_BUTTON_RELEASE:
        takeRawButton(as<xcb_input_raw_button_press_event_t>(event));
        break;
    case XCB_INPUT_RAW_KEY_RELEASE: grab.attempt(); break;
    case XCB_INPUT_BUTTON_PRESS:
    case XCB_INPUT_BUTTON_RELEASE:
        takeButton(as<xcb_input_button_press_event_t>(event).detail,
                   event.event_type == XCB_INPUT_BUTTON_PRESS);
        break;
    case XCB_INPUT_KEY_PRESS:
    case XCB_INPUT_KEY_RELEASE:
        if (grab.isActive())
            takeKey(as<xcb_input_key_press_event_t>(event).detail,
                    event.event_type == XCB_INPUT_KEY_PRESS);
        else if (event.event_type == XCB_INPUT_KEY_PRESS)
            takeHotkey(as<xcb_input_key_press_event_t>(event));
        break;
    default: break;
    }
}

/// A session can have several pointers, each with its own cursor; it is the first that is held.
bool XInputLink::isOurs(XPointers::DeviceId master) const {
    return master == pointers.masters().pointer;
}

void XInputLink::takeRawMotion(const xcb_input_raw_motion_event_t& event) {
    auto motion = pointers.motion(event);
    if (!motion || !isOurs(event.deviceid)) return;
    if (!grab.isActive()) {
        if (listening) queryPointer(event.deviceid);
        return;
    }
    if (pointers.needsPointer(event)) motion = xtestMotion(event);
    deliverMotion(pacer.add(*motion, pump.drainTime()));
    schedulePacer();
}

void XInputLink::takeRawButton(const xcb_input_raw_button_press_event_t& event) {
    if (!grab.isActive() || !isOurs(event.deviceid)) return;
    const bool isDown = event.event_type == XCB_INPUT_RAW_BUTTON_PRESS;
    takeButton(logicalButton(event), isDown);
    if (!isDown) grab.attempt();
}

void XInputLink::takeButton(std::uint32_t button, bool isDown) {
    if (!grab.isActive()) return;
    using enum EventType;
    switch (button) {
    case 1: deliver({.type = isDown ? leftMouseDown : leftMouseUp}); break;
    case 3: deliver({.type = isDown ? rightMouseDown : rightMouseUp}); break;
    case 4:
    case 5:
        if (isDown) deliver({.type = scrollWheel, .scrollDelta = button == 4 ? +1 : -1});
        break;
    case 6:
    case 7: break;
    default: deliver({.type = isDown ? otherMouseDown : otherMouseUp}); break;
    }
    buttonsDown = isDown ? buttonsDown | bit(button) : buttonsDown & ~bit(button);
}

void XInputLink::takeKey(std::uint32_t keyCode, bool isDown) {
    // What went down as a key goes up as one, whatever the keymap says by then.
    const bool isKnown = keyCode < keysDown.size();
    const bool wasKey = isKnown && keysDown[keyCode];
    if (!wasKey && keyboard.isModifierKey(keyCode)) return;
    if (isKnown) keysDown[keyCode] = isDown;
    const auto key = hostKey(keyCode);
    switch (key.kind) {
    case HostKey::Kind::key:
        deliver({.type = isDown ? EventType::keyDown : EventType::keyUp,
                 .flags = keyboard.flags(),
                 .keyCode = key.code});
        break;
    case HostKey::Kind::media:
        deliver({.type = EventType::systemDefined,
                 .flags = keyboard.flags(),
                 .subtype = auxiliaryControlButtons,
                 .data1 = key.code << 16 | (isDown ? 0x0A00 : 0x0B00)});
        break;
    case HostKey::Kind::swallowed: break;
    }
}

void XInputLink::takeHotkey(const xcb_input_key_press_event_t& event) {
    if (const auto identity = hotkeys.match(event)) handlers.pressHotkey(*identity);
}

/// Modifiers don't wait for the keyboard: the way back must work while its grab is pending.
void XInputLink::takeModifiers() {
    if (!grab.isActive()) return;
    const auto flags = keyboard.flags();
    if (std::exchange(lastFlags, flags) == flags) return;
    deliver({.type = EventType::flagsChanged, .flags = flags});
}

/// Asks where the pointer is. One query at a time; motion during it makes another.
void XInputLink::queryPointer(XPointers::DeviceId pointer) {
    if (pendingQuery) {
        nextQuery = pointer;
        return;
    }
    // A fast mouse would wake the program for each of its motions and each of the replies.
    const auto now = MotionPacer::Clock::now();
    if (now - std::exchange(lastQuery, now) < fastMotion) pump.rest();
    pendingQuery =
        xcb_input_xi_query_pointer(connection->get(), connection->root(), pointer).sequence;
}

bool XInputLink::takePointerReply() {
    if (!pendingQuery) return false;
    void* answer = nullptr;
    xcb_generic_error_t* problem = nullptr;
    if (xcb_poll_for_reply(connection->get(), *pendingQuery, &answer, &problem) == 0) return false;
    const XOwned<xcb_input_xi_query_pointer_reply_t> pointer{
        static_cast<xcb_input_xi_query_pointer_reply_t*>(answer)};
    const XOwned<xcb_generic_error_t> error{problem};
    pendingQuery.reset();
    if (const auto next = std::exchange(nextQuery, std::nullopt)) queryPointer(*next);
    if (!pointer || !listening) return true;
    const auto at =
        space.globalFromRoot({pointer->root_x / unitsPerPixel, pointer->root_y / unitsPerPixel});
    const auto from = std::exchange(lastLocation, at);
    handlers.deliver({.type = motionType(buttonsIn(*pointer)),
                      .location = at,
                      .deltaX = static_cast<std::int64_t>(at.x - from.x),
                      .deltaY = static_cast<std::int64_t>(at.y - from.y)});
    return true;
}

FineMotion XInputLink::xtestMotion(const xcb_input_raw_motion_event_t& event) {
    const auto cookie =
        xcb_input_xi_query_pointer(connection->get(), connection->root(), event.deviceid);
    const XOwned<xcb_input_xi_query_pointer_reply_t> pointer{
        xcb_input_xi_query_pointer_reply(connection->get(), cookie, nullptr)};
    return pointer ? xtest.motion(XPointers::values(event), pixelOf(*pointer)) : FineMotion{};
}

/// Raw events count a mouse's buttons as they are; left-handed people have them swapped, for the
/// mouse or for the pointer.
std::uint32_t XInputLink::logicalButton(const xcb_input_raw_button_press_event_t& event) const {
    auto* c = connection->get();
    const auto mouseCookie =
        xcb_input_get_device_button_mapping(c, static_cast<std::uint8_t>(event.sourceid));
    const auto pointerCookie = xcb_get_pointer_mapping(c);
    const XOwned<xcb_input_get_device_button_mapping_reply_t> mouse{
        xcb_input_get_device_button_mapping_reply(c, mouseCookie, nullptr)};
    const XOwned<xcb_get_pointer_mapping_reply_t> pointer{
        xcb_get_pointer_mapping_reply(c, pointerCookie, nullptr)};
    auto button = event.detail;
    if (mouse && 0 < button && button <= mouse->map_size)
        button = xcb_input_get_device_button_mapping_map(mouse.get())[button - 1];
    if (pointer && 0 < button && button <= pointer->map_len)
        button = xcb_get_pointer_mapping_map(pointer.get())[button - 1];
    return button;
}

void XInputLink::deliver(const TapEvent& event) {
    deliverMotion(pacer.take(pump.drainTime()));
    // That motion may have been the way back.
    if (grab.isActive()) handlers.deliver(event);
}

void XInputLink::deliverMotion(const std::optional<MotionPacer::Delta>& delta) {
    if (!delta || !grab.isActive()) return;
    const auto& held = grab.heldPointer();
    handlers.deliver({.type = motionType(buttonsDown),
                      .location = space.globalFromRoot(
                          {held.root_x / unitsPerPixel, held.root_y / unitsPerPixel}),
                      .deltaX = delta->x,
                      .deltaY = delta->y});
}

void XInputLink::deliverDueMotion() {
    const auto now = MotionPacer::Clock::now();
    const auto due = pacer.due();
    // A key or a button may have taken what the timer was started for.
    if (due && *due <= now) deliverMotion(pacer.take(now));
    schedulePacer();
}

void XInputLink::schedulePacer() {
    const auto due = pacer.due();
    if (!due || pacerTimer.isActive()) return;
    const auto wait = std::chrono::ceil<milliseconds>(*due - MotionPacer::Clock::now());
    pacerTimer.start(std::max(wait, milliseconds{0}));
    InputPoll::stir();
}

} // namespace quenthisar
