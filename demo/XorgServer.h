// SPDX-License-Identifier: MIT
#pragma once

#include "XServer.h"

namespace quenthisar::demo {

/// Starts the X server that desktops run, on two outputs that nobody sees: DUMMY0, 1280 by 800 at
/// (0,0) and primary, and DUMMY1, 1024 by 768 to the right of it. Its devices `mouse`,
/// `keyboard` and `tablet` are driven through sockets of these names in `folder` (InputTestDevice).
/// It needs no rights. Throws std::runtime_error if it does not start.
XServer startXorg(const QString& folder);

/// US, with the key codes of today's keyboards; without a desktop, Xorg's have others. Throws
/// std::runtime_error.
void useKeymapOfDesktops(const XServer& xorg);

} // namespace quenthisar::demo
