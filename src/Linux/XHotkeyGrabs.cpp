// SPDX-License-Identifier: MIT
#include "Linux/XHotkeyGrabs.h"

#include "Linux/HostKeys.h"
#include "Platform/EventTap.h"

#include <algorithm>
#include <array>

namespace quenthisar {

namespace {

constexpr std::uint16_t everyMaster = XCB_INPUT_DEVICE_ALL_MASTER;
constexpr std::uint32_t keyPress = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;

constexpr std::uint64_t eventFlags(std::uint32_t modifiers) {
    std::uint64_t flags = 0;
    if (modifiers & HotkeyModifiers::control) flags |= EventFlags::control;
    if (modifiers & HotkeyModifiers::option) flags |= EventFlags::option;
    if (modifiers & HotkeyModifiers::command) flags |= EventFlags::command;
    if (modifiers & HotkeyModifiers::shift) flags |= EventFlags::shift;
    return flags;
}

/// The key at the position that a virtual key code means; 0 for none.
std::uint8_t keyAt(std::uint32_t virtualKeyCode) {
    constexpr std::uint8_t first = 8, last = 255; // X's key codes
    for (unsigned code = first; code <= last; ++code)
        if (hostKey(code) ==
            HostKey{HostKey::Kind::key, static_cast<std::uint16_t>(virtualKeyCode)})
            return static_cast<std::uint8_t>(code);
    return 0;
}

} // namespace

bool XHotkeyGrabs::add(const Hotkey& hotkey) {
    Grab next{.hotkey = hotkey, .keyCode = keyAt(hotkey.keyCode)};
    if (next.keyCode == 0 || !grab(next)) return false;
    next.isHeld = true;
    grabs.push_back(std::move(next));
    return true;
}

void XHotkeyGrabs::renew() {
    // What stays the same is held on to: a press between two grabs would be missed.
    const auto isOutdated = [this](const Grab& each) {
        return !each.isHeld || each.masks != keyboard.masksOf(eventFlags(each.hotkey.modifiers));
    };
    std::vector<Grab*> outdated;
    for (auto& each : grabs)
        if (isOutdated(each)) outdated.push_back(&each);
    for (const auto* old : outdated) ungrab(*old);
    // One that another client has got meanwhile is lost until the next time.
    for (auto* next : outdated) next->isHeld = grab(*next);
}

/// The core grabs are there for the conflicts only: the server takes the latest grab that fits.
bool XHotkeyGrabs::grab(Grab& next) {
    auto* c = connection.get();
    next.masks = keyboard.masksOf(eventFlags(next.hotkey.modifiers));
    // A keymap that lacks one of the modifiers: nobody can press it, until there is another.
    if (next.masks.empty()) return true;
    std::vector<xcb_void_cookie_t> cookies;
    for (const auto mask : next.masks)
        cookies.push_back(xcb_grab_key_checked(c, true, connection.root(),
                                               static_cast<std::uint16_t>(mask), next.keyCode,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    const auto cookie = xcb_input_xi_passive_grab_device(
        c, XCB_CURRENT_TIME, connection.root(), XCB_CURSOR_NONE, next.keyCode, everyMaster,
        static_cast<std::uint16_t>(next.masks.size()), 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
        XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER,
        &keyPress, next.masks.data());
    bool isOurs = true;
    for (const auto core : cookies) {
        const XOwned<xcb_generic_error_t> error{xcb_request_check(c, core)};
        if (error) isOurs = false;
    }
    const XOwned<xcb_input_xi_passive_grab_device_reply_t> reply{
        xcb_input_xi_passive_grab_device_reply(c, cookie, nullptr)};
    // It lists the masks that were refused.
    if (!reply || reply->num_modifiers > 0) isOurs = false;
    if (!isOurs) ungrab(next);
    return isOurs;
}

void XHotkeyGrabs::ungrab(const Grab& old) {
    if (old.masks.empty()) return;
    auto* c = connection.get();
    for (const auto mask : old.masks)
        xcb_ungrab_key(c, old.keyCode, connection.root(), static_cast<std::uint16_t>(mask));
    xcb_input_xi_passive_ungrab_device(c, connection.root(), old.keyCode, everyMaster,
                                       static_cast<std::uint16_t>(old.masks.size()),
                                       XCB_INPUT_GRAB_TYPE_KEYCODE, old.masks.data());
}

std::optional<HotkeyIdentity> XHotkeyGrabs::match(const xcb_input_key_press_event_t& press) const {
    if (press.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) return std::nullopt;
    const auto found = std::ranges::find_if(grabs, [&](const Grab& grab) {
        return grab.keyCode == press.detail &&
               std::ranges::count(grab.masks, press.mods.effective) > 0;
    });
    return found != grabs.end() ? std::optional{found->hotkey.identity} : std::nullopt;
}

} // namespace quenthisar
