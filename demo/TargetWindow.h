// SPDX-License-Identifier: MIT
#pragma once

#include "Rig.h"

namespace quenthisar::demo {

/// Runs Quenthisar on the user's own desktop with a target in a window (Xephyr), until the window
/// is closed or an interrupt comes. Prints each report, and saves a picture of both screens to
/// `picture` upon the first return. False if the program ended by itself. Throws std::runtime_error
/// if something doesn't start.
bool runTargetWindow(const Programs& programs, const QString& picture);

} // namespace quenthisar::demo
