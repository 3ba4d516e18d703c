// SPDX-License-Identifier: MIT
#pragma once

#include "Host.h"

#include "demo/Crossing.h"

namespace quenthisar::bench {

/// How long each of some returns takes: from the last key of the return chord, made with the host's
/// keyboard, to the moment when another client of the host has got both motion and a key of its
/// devices, which go on all the time. Starts and ends at the host. Throws std::runtime_error if a
/// takeover or a return doesn't come.
std::vector<nanoseconds> measureReturns(const Host& host, demo::Crossing& crossing, int times);

} // namespace quenthisar::bench
