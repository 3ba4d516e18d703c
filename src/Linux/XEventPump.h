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
    using Clock = std::chrono::steady_clock;

    struct Handlers {
        std::function<void(const xcb_generic_event_t&)> event;
        /// Looks for replies that nobody waits for; true if one was there.
        std::function<bool()> replies = [] { return false; };
        /// Called once when the connection is lost; nothing is called after that.
        std::function<void()> lost = [] {};
    };

    XEventPump(XConnection& source, Handlers actions);
    ~XEventPump();
    XEventPump(const XEventPump&) = delete;
    XEventPump& operator=(const XEventPump&) = delete;

    /// When what is being handed on was found. To ask the clock costs as much as to hand it on.
    Clock::time_point drainTime() const { return lastDrain; }
    /// Whether what arrives is handed on while the main loop sleeps. Its handlers tell `InputPoll`
    /// what they do.
    void setPrompt(bool on);

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

    void drain(Clock::time_point now = Clock::now());

    XConnection& connection;
    Handlers handlers;
    Notifier notifier;
    QTimer soon, restEnd;
    Clock::time_point lastDrain{};
    bool draining = false, lost = false;
};

} // namespace quenthisar
