// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/XConnection.h"
#include "Linux/XcbXkb.h"

#include <bitset>
#include <cstdint>
#include <optional>
#include <vector>

namespace quenthisar {

/// The modifiers of the session's keyboard: which they are by its keymap, and which are on.
class XKeyboard {
public:
    /// False when the server lacks XKB. Events of this class arrive on the connection from now on.
    bool open(const XConnection& source);

    enum class Change { none, modifiers, keymap };
    /// Takes in `event` if it is one of the keyboard's, and tells what has changed with it.
    Change take(const xcb_generic_event_t& event);

    /// Event flags of the modifiers that are on.
    std::uint64_t flags() { return flagsOf(modifiers); }
    /// The same for a mask of X's modifier bits.
    std::uint64_t flagsOf(std::uint32_t mask);
    /// Every mask of X's modifier bits that means exactly `flags`, whatever locks are on.
    std::vector<std::uint32_t> masksOf(std::uint64_t flags);
    /// Modifier keys show in the flags only, never as keys.
    bool isModifierKey(std::uint32_t keyCode);

    /// Remembers the states of Caps Lock and Num Lock.
    void keepLocks();
    /// Puts them back as they were.
    void restoreLocks();

private:
    /// X's modifier bits, as the keymap assigns them.
    struct Bits {
        std::uint8_t option = 0, command = 0, numLock = 0;
    };

    void select();
    void readTables();
    XOwned<xcb_xkb_get_state_reply_t> readState();
    void readModifierBits();
    void readModifierKeys();

    const XConnection* connection = nullptr;
    std::uint8_t firstEvent = 0;
    bool stale = true;
    Bits bits;
    std::bitset<256> modifierKeys;
    std::uint8_t modifiers = 0;
    OldestSequence oldest;
    std::optional<std::uint8_t> keptLocks;
};

} // namespace quenthisar
