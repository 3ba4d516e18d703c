// SPDX-License-Identifier: MIT
#pragma once

#include "Rig.h"

namespace quenthisar::demo {

/// Measures the time from an input event on the host's X server to its payload at the dongle, for
/// `count` key events and for as many motions at 125 Hz, and prints the figures. False if an event
/// brought no payload. Throws std::runtime_error if nothing can be measured.
bool measureLatency(const Programs& programs, int count);

} // namespace quenthisar::demo
