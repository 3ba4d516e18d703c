// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

namespace quenthisar {

/// Bits of the hotkey service's modifier masks.
namespace HotkeyModifiers {
inline constexpr std::uint32_t command = 0x0100;
inline constexpr std::uint32_t shift = 0x0200;
inline constexpr std::uint32_t option = 0x0800;
inline constexpr std::uint32_t control = 0x1000;
} // namespace HotkeyModifiers

/// What the application calls one of its hotkeys.
struct HotkeyIdentity {
    std::uint32_t signature = 0; // a four-character code
    std::uint32_t id = 0;

    bool operator==(const HotkeyIdentity&) const = default;
};

/// What the service calls a registered hotkey.
using HotkeyRef = std::uint32_t;

/// The host's global hotkeys: key combinations that reach this program whatever has the focus,
/// and nobody else. Main thread.
class HotkeyService {
public:
    using Handler = std::function<void(const HotkeyIdentity&)>;

    virtual ~HotkeyService() = default;

    /// `handler` is called on the main thread for each press of a registered hotkey, never inside a
    /// call of this interface; repeats of a held key and releases are no presses. One handler at a
    /// time.
    virtual void installEventHandler(Handler handler) = 0;

    /// Registers the combination of a virtual key code (as in `TapEvent::keyCode`) and modifiers;
    /// none if another program holds it. It stays registered for the life of the process.
    virtual std::optional<HotkeyRef> registerEventHotKey(std::uint32_t keyCode,
                                                         std::uint32_t modifiers,
                                                         const HotkeyIdentity& identity) = 0;
};

} // namespace quenthisar
