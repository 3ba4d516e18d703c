// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/HotkeyService.h"
#include "Support/WeakGuard.h"

#include <cstdint>
#include <functional>
#include <map>

namespace quenthisar {

/// Gives each global hotkey its callback. Lives as long as the process; main thread.
class HotkeyManager {
public:
    explicit HotkeyManager(HotkeyService& service);

    /// Registers a combination and returns its id: 1, 2, 3 … in this order, also for one that
    /// another program holds and that then does nothing. `keyCode` is a virtual key code,
    /// `modifiers` a mask of `HotkeyModifiers`.
    std::uint32_t registerHotkey(std::uint32_t keyCode, std::uint32_t modifiers,
                                 std::function<void()> handler);

private:
    void dispatch(const HotkeyIdentity& identity) const;

    HotkeyService& service;
    std::map<std::uint32_t, std::function<void()>> handlers;
    std::map<std::uint32_t, HotkeyRef> refs;
    std::uint32_t nextID = 1;
    WeakGuard guard;
};

} // namespace quenthisar
