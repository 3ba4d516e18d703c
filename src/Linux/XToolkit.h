// SPDX-License-Identifier: MIT
#pragma once

#include <QtGui/qwindowdefs.h>

#include <xcb/xcb.h>

namespace quenthisar::XToolkit {

/// The toolkit's own connection; null where it draws on something else than X. Needs the
/// application object.
xcb_connection_t* connection();

/// Keeps the server from telling the toolkit's connection of each pressed button, which is of no
/// use to it and would wake the program a second time for each.
void ignoreButtonStates();

/// Brings a window of ours to the front and gives it the keyboard, on its own desktop, also where
/// the window manager keeps those back that nobody has asked for.
void activate(WId window);

} // namespace quenthisar::XToolkit
