// SPDX-License-Identifier: MIT
#pragma once

#include "Hands.h"
#include "Rig.h"

namespace quenthisar::demo {

/// The way over the bound edge of a rig's host, and back.
class Crossing {
public:
    /// Both outlive it. Throws std::runtime_error if the keymap lacks a key of the return chord.
    Crossing(const XClient& host, Rig& rig);

    /// Moves the pointer onto the bound edge, again and again, until its motion arrives at the
    /// dongle. Capture starts by itself some time after the program does, and nothing tells when.
    /// All that it did has arrived when it returns.
    bool enter(std::chrono::milliseconds limit);
    /// Presses the three keys that return to the host, and lets go of them.
    void pressReturnChord() const { hands.chord(chord); }
    /// Whether motion moves the host's pointer; it ends away from the bound edge.
    bool hostPointerMoves(std::chrono::milliseconds limit) const;

private:
    /// In a takeover: taps a modifier and waits for it, so that all motion before it has arrived.
    bool settle();

    const XClient& host;
    Rig& rig;
    const Hands hands;
    const QList<std::uint8_t> chord;
};

} // namespace quenthisar::demo
