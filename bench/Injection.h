// SPDX-License-Identifier: MIT
#pragma once

#include "Load.h"

#include "demo/InputTestDevice.h"

#include <functional>

namespace quenthisar::bench {

/// Hands at the devices of one server.
struct Devices {
    demo::InputTestDevice mouse, keyboard;
};

/// Makes the input with devices, each at its time, and calls `attend` on this thread again and
/// again meanwhile. Returns when each was made: the time right before the server was told, in the
/// same order. Throws std::runtime_error when interrupted.
std::vector<Clock::time_point> inject(const Devices& devices, const Stimuli& stimuli,
                                      const std::function<void()>& attend);

} // namespace quenthisar::bench
