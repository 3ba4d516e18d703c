// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

namespace quenthisar::XToolkit {

/// The toolkit's own connection; null where it draws on something else than X. Needs the
/// application object.
xcb_connection_t* connection();

/// Keeps the server from telling the toolkit's connection of each pressed button, which is of no
/// use to it and would wake the program a second time for each.
void ignoreButtonStates();

} // namespace quenthisar::XToolkit
