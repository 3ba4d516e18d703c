// SPDX-License-Identifier: MIT
#pragma once

#include "Desk.h"
#include "FrameBuffer.h"
#include "Hands.h"
#include "Rig.h"
#include "XClient.h"

namespace quenthisar::demo {

/// Two computers side by side: a host with keyboard, mouse and the program, a target with a dongle,
/// and on each a desk that tells of all that a focused client there gets.
class Stage {
public:
    struct Options {
        Programs programs;
        bool cornerSlam = false;
        ChildProcess::LineHandler onDongleLine{};
    };

    /// Starts everything but the program. Throws std::runtime_error if something doesn't start.
    explicit Stage(const Options& options);

    /// Moves the pointer onto the bound edge, again and again, until its motion arrives at the
    /// dongle. Capture starts by itself some time after the program does, and nothing tells when.
    /// All that it did has arrived when it returns.
    bool cross(std::chrono::milliseconds limit);
    /// Presses the three keys that return to the host, and lets go of them.
    void pressReturnChord() const { hands.chord(chord); }

    /// Whether motion moves the host's pointer; it ends away from the bound edge.
    bool hostPointerMoves(std::chrono::milliseconds limit);
    /// Whether a key typed at the host arrives at its desk.
    bool hostKeyboardWorks(std::chrono::milliseconds limit);
    void endHostServer() { hostServer.kill(); }
    bool hostShowsCursor() const { return hostFrames.showsCursor(host); }

private:
    /// In a takeover: taps a modifier and waits for it, so that all motion before it has arrived.
    bool settle();

    QTemporaryDir frameFolder;
    XServer hostServer, targetServer;
    FrameBuffer hostFrames;

public:
    const XClient host, target;
    const Hands hands; // at the host
    Desk hostDesk, targetDesk;
    Rig rig;

private:
    const QList<std::uint8_t> chord;
};

} // namespace quenthisar::demo
