// SPDX-License-Identifier: MIT
#pragma once

#include "Load.h"

#include "demo/XClient.h"

#include <functional>

namespace quenthisar::bench {

/// Makes the input on a server, each at its time, and calls `attend` on this thread again and again
/// meanwhile. Returns when each was made: the time right before the server was told, in the same
/// order. Throws std::runtime_error when interrupted.
std::vector<Clock::time_point> inject(const demo::XClient& server, const Stimuli& stimuli,
                                      const std::function<void()>& attend);

} // namespace quenthisar::bench
