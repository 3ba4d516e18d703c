// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <chrono>
#include <memory>
#include <string>
#include <xcb/xcb.h>

namespace quenthisar::dongle {

/// A focused window all over an X server's screen, to see what is typed and clicked there.
class Target {
public:
    explicit Target(const QString& display);

    /// Waits until as many events as `expected` names have come and returns them as text, such as
    /// "+38 -38 +button1 " (X key codes) and "700,400 " for a motion.
    std::string events(std::size_t expected,
                       std::chrono::milliseconds limit = std::chrono::seconds{5});

private:
    std::string text(const xcb_generic_event_t& event) const;

    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    std::unique_ptr<xcb_connection_t, Disconnect> connection;
};

} // namespace quenthisar::dongle
