// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/XConnection.h"

#include <QSocketNotifier>
#include <QTimer>

#include <functional>

namespace quenthisar {

/// Hands on, from the main loop, what arrives on a connection. Main thread. Not to be destroyed
/// by one of its handlers.
class XEventPump {
public:
    struct Handlers {
        std::function<void(const xcb_generic_event_t&)> event;
        /// Looks for replies that nobody waits for; true if one was there.
        std::function<bool()> replies = [] { return false; };
        /// Called once when the connection is lost; nothing is called after that.
        std::function<void()> lost = [] {};
    };

    XEventPump(const XConnection& source, Handlers actions);

    /// To be called after a reply was waited for, or requests were written: what xcb has read
    /// meanwhile is in its queue, where the descriptor no longer announces it.
    void drainSoon();

private:
    void drain();

    const XConnection& connection;
    Handlers handlers;
    QSocketNotifier notifier;
    QTimer soon;
    bool draining = false, lost = false;
};

} // namespace quenthisar
