// SPDX-License-Identifier: MIT
#pragma once

#include "Host.h"
#include "ProcessState.h"

#include "demo/Crossing.h"
#include "demo/Rig.h"

#include <cstdint>

namespace quenthisar::bench {

/// What a user does all day, in a minute's fraction: takeovers under floods of motion, text from
/// the clipboard, the window, lost links. All functions throw std::runtime_error when the program
/// does not do what it should, or when interrupted.
class WorkingDay {
public:
    explicit WorkingDay(const demo::Programs& programs);

    /// All of it once, some twenty seconds long. At its end the input is the host's and nothing is
    /// held on the target.
    void playRound();

    ProcessState state();
    /// How much input was made so far.
    std::uint64_t inputs() const { return made; }

private:
    void play();
    void takeOver();
    void giveBack();
    void flood(int motionRate, double seconds);
    void typeClipboard();
    void openAndCloseWindow();
    void loseLink();

    const Host host;
    const demo::XServer targetServer;
    const demo::XClient target{targetServer.display()};
    demo::Rig rig;
    demo::Crossing crossing{host.client(), rig};
    const demo::Hands hands{host.client()};
    std::uint64_t made = 0;
};

} // namespace quenthisar::bench
