// SPDX-License-Identifier: MIT
#pragma once

#include "demo/XClient.h"

#include <QRect>

namespace quenthisar::e2e {

/// A tray into which programs put windows (XEmbed), at a place on an X server, for one icon.
class SystemTray {
public:
    explicit SystemTray(const QString& display);
    ~SystemTray();
    SystemTray(const SystemTray&) = delete;
    SystemTray& operator=(const SystemTray&) = delete;

    /// Takes in what has come since. Whether an icon is there.
    bool hasIcon();

    static constexpr QRect frame{600, 100, 24, 24};

private:
    void embed(xcb_window_t window);

    demo::XClient client;
    xcb_connection_t* c;
    xcb_window_t window, icon = XCB_WINDOW_NONE;
};

} // namespace quenthisar::e2e
