// SPDX-License-Identifier: MIT
#pragma once

#include "Crossing.h"
#include "Desk.h"
#include "FrameBuffer.h"
#include "XClient.h"

#include <optional>

namespace quenthisar::demo {

/// Two computers side by side: a host with keyboard, mouse and the program, a target with a dongle,
/// and on each a desk that tells of all that a focused client there gets.
class Stage {
public:
    struct Options {
        Programs programs;
        bool cornerSlam = false;
        QString programErrors{}; // as in `Rig`
        /// Of an X server that is there already; where empty, the host has an Xvfb of its own.
        QString hostDisplay{};
        ChildProcess::Environment programEnvironment{}; // as in `Rig`
        ChildProcess::LineHandler onDongleLine{};
    };

    /// Starts everything but the program. Throws std::runtime_error if something doesn't start.
    explicit Stage(const Options& options);

    /// As in `Crossing`.
    bool cross(std::chrono::milliseconds limit) { return crossing.enter(limit); }
    void pressReturnChord() const { crossing.pressReturnChord(); }
    bool hostPointerMoves(std::chrono::milliseconds limit) const {
        return crossing.hostPointerMoves(limit);
    }

    /// Whether a key typed at the host arrives at its desk.
    bool hostKeyboardWorks(std::chrono::milliseconds limit);
    QString hostDisplay() const { return displayOfHost; }
    /// Only with a server of its own, here and below.
    void endHostServer() { hostServer->kill(); }
    bool hostShowsCursor() const { return hostFrames->showsCursor(host); }

private:
    QTemporaryDir frameFolder;
    std::optional<XServer> hostServer;
    const QString displayOfHost;
    XServer targetServer;
    std::optional<FrameBuffer> hostFrames;

public:
    const XClient host, target;
    const Hands hands; // at the host
    Desk hostDesk, targetDesk;
    Rig rig;

private:
    Crossing crossing;
};

} // namespace quenthisar::demo
