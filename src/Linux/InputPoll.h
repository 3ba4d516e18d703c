// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

namespace quenthisar {

/// Hands on the input of a takeover while the main loop sleeps: the loop's own way from a
/// descriptor to its handler costs more than all that follows. Whatever else is ready, or becomes
/// so by what is handed on, is the loop's; and so is everything where the loop is not GLib's.
/// Main thread.
namespace InputPoll {

using Clock = std::chrono::steady_clock;

/// From now on `drain` is called when `descriptor`, which the loop watches too, is all that is
/// ready. It replaces the one before.
void start(int descriptor, std::function<void(Clock::time_point now)> drain);
/// No longer, if it was that one. May be called by what `drain` calls.
void stop(int descriptor);

// What is handed on must be told, or the loop would sleep past it. An event that became one payload
// concerns nobody else:
void noteEvent();
void notePayload();
/// Something that the loop has to look at: a timer, a descriptor, a window.
void stir();

} // namespace InputPoll
} // namespace quenthisar
