// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/XConnection.h"

#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
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

    XEventPump(XConnection& source, Handlers actions);

    /// To be called after a reply was waited for, or requests were written: what xcb has read
    /// meanwhile is in its queue, where the descriptor no longer announces it.
    void drainSoon();
    /// Leaves what arrives for the next two milliseconds together, however often it comes.
    void rest();

private:
    /// Takes its event itself: a signal would cost more than the rest of the way.
    class Notifier final : public QSocketNotifier {
    public:
        Notifier(qintptr descriptor, XEventPump& owner)
            : QSocketNotifier(descriptor, QSocketNotifier::Read), pump(owner) {}

    protected:
        bool event(QEvent* event) override;

    private:
        XEventPump& pump;
    };

    void drain();

    XConnection& connection;
    Handlers handlers;
    Notifier notifier;
    QTimer soon, restEnd;
    std::chrono::steady_clock::time_point lastDrain{};
    bool draining = false, lost = false;
};

} // namespace quenthisar
