// SPDX-License-Identifier: MIT
#pragma once

#include "demo/XServer.h"

namespace quenthisar::test {

/// Starts the X server that desktops run, on two outputs that nobody sees: DUMMY0, 1280 by 800 at
/// (0,0) and primary, and DUMMY1, 1024 by 768 to the right of it. Its devices `mouse`,
/// `keyboard` and `tablet` are driven through sockets of these names in `folder` (InputTestDevice).
/// It needs no rights. Throws std::runtime_error if it does not start.
demo::XServer startXorg(const QString& folder);

} // namespace quenthisar::test
