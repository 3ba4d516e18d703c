// SPDX-License-Identifier: MIT
#include "Linux/XEventPump.h"

#include <utility>

namespace quenthisar {

XEventPump::XEventPump(const XConnection& source, Handlers actions)
    : connection(source), handlers(std::move(actions)),
      notifier(xcb_get_file_descriptor(source.get()), QSocketNotifier::Read) {
    soon.setSingleShot(true);
    QObject::connect(&soon, &QTimer::timeout, &soon, [this] { drain(); });
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [this] { drain(); });
    drainSoon();
}

void XEventPump::drainSoon() {
    // A drain under way comes to those events by itself.
    if (!draining && !lost) soon.start(0);
}

void XEventPump::drain() {
    // A handler that runs an event loop of its own must not change the order of events.
    if (std::exchange(draining, true)) return;
    XOwned<xcb_generic_event_t> event;
    bool hadReply = false;
    do {
        for (event.reset(xcb_poll_for_event(connection.get())); event;
             event.reset(xcb_poll_for_event(connection.get())))
            handlers.event(*event);
        // Writing reads the socket too: what it has read, nothing announces any more.
        connection.flush();
        hadReply = handlers.replies();
        event.reset(xcb_poll_for_queued_event(connection.get()));
        if (event) handlers.event(*event);
    } while (event || hadReply);
    draining = false;
    if (!connection.isLost() || std::exchange(lost, true)) return;
    notifier.setEnabled(false);
    soon.stop();
    handlers.lost();
}

} // namespace quenthisar
