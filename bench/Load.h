// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>

#include <chrono>
#include <cstdint>
#include <vector>

namespace quenthisar::bench {

using Clock = std::chrono::steady_clock; // CLOCK_MONOTONIC
using std::chrono::nanoseconds;

enum class Kind { motion, key, button, scroll };

/// What X calls a line of a wheel up and down.
constexpr std::uint8_t wheelUp = 4, wheelDown = 5;

/// What a hand does at one moment.
struct Stimulus {
    nanoseconds due{}; // from the start of the load
    Kind kind = Kind::motion;
    std::uint8_t detail = 0; // the X key code, or the button; of a scroll its wheel button
    bool isDown = false;     // keys and buttons
    QPoint delta{};          // motion
};
using Stimuli = std::vector<Stimulus>;

/// What is asked of a subject for a while.
struct Load {
    const char* name;
    int motionRate; // events a second
    int otherRate;
    Kind other; // with an `otherRate` only
    double seconds;

    bool isFlood() const { return motionRate > 0 && otherRate > 0; }
    bool isMotionOnly() const { return otherRate == 0; }

    /// For `seconds` * `share`, in order of time. Everything pressed is released. Motion goes one
    /// pixel down each time, so that a sum tells how many it holds, and to and fro sideways, so
    /// that the pointer really moves.
    Stimuli stimuli(double share) const;
};

/// The loads of a full run.
const std::vector<Load>& allLoads();

} // namespace quenthisar::bench
