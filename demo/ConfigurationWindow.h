// SPDX-License-Identifier: MIT
#pragma once

#include "XClient.h"

#include <chrono>

namespace quenthisar::demo {

/// The program's window; none where it is not on screen.
xcb_window_t configurationWindow(const XClient& client);

/// Asks a window to close, as a window manager does.
void askToClose(const XClient& client, xcb_window_t window);

/// Waits for the window that the program opens at its start, closes it as a window manager does and
/// gives the keyboard back to `focus`. False if it takes longer than `limit`.
bool closeConfigurationWindow(const XClient& client, xcb_window_t focus,
                              std::chrono::milliseconds limit);

/// The window that has the keyboard; none if the server went away.
xcb_window_t focusedWindow(const XClient& client);

} // namespace quenthisar::demo
