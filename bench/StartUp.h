// SPDX-License-Identifier: MIT
#pragma once

#include "Load.h"

#include "demo/Rig.h"

namespace quenthisar::bench {

/// From the start of a process to the first picture of its window, as the screen shows it.
struct StartUp {
    std::vector<nanoseconds> empty; // of a window with nothing in it
    std::vector<nanoseconds> program;
};

/// Starts both in turn, on a server without a window manager; the first of each, which reads files
/// for all others, is left out. Throws std::runtime_error if a window doesn't come.
StartUp measureStartUp(const demo::Programs& programs, const QString& emptyWindow, int rounds);

} // namespace quenthisar::bench
