// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/XConnection.h"
#include "Linux/XPointers.h"

#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include <QTimer>

#include <array>
#include <chrono>
#include <functional>
#include <optional>

namespace quenthisar {

/// Takes the session's keyboard and pointer from all other clients, and holds the pointer where it
/// is. A grab can be refused (an open menu, a drag): then it stays pending and is tried again.
class XInputGrab {
public:
    struct Events {
        /// After each attempt by the timer: a reply was waited for.
        std::function<void()> attempted;
        /// When a grab has been pending for over a second.
        std::function<void()> refusedForLong;
    };

    XInputGrab(const XConnection& server, Events handlers);

    /// False, without effect, when the connection is lost.
    bool begin(XPointers::Masters devices);
    /// Lets go of everything; the pointer goes back to where it was held. The caller flushes.
    void end();

    /// Tries to get what is still pending.
    void attempt();

    bool isActive() const { return kept != nullptr; }
    bool isPending() const { return isActive() && !(keyboardIsOurs && pointerIsOurs); }

    /// Where the pointer is held, in the root window, and the buttons that were down then (bit n
    /// is button n). Only while active.
    const xcb_input_xi_query_pointer_reply_t& heldPointer() const { return *kept; }
    /// One that exists on the server exactly while this is active; 0 while it is not.
    std::uint32_t resource() const { return isActive() ? barriers.front() : 0; }
    /// The sequence number of the first request: what the server sent before it is older.
    unsigned firstSequence() const { return sequence; }

private:
    void createBarriers(std::uint16_t x, std::uint16_t y);
    void warpBack();

    const XConnection& connection;
    Events events;
    XPointers::Masters masters;
    XOwned<xcb_input_xi_query_pointer_reply_t> kept;
    unsigned sequence = 0;
    std::array<xcb_xfixes_barrier_t, 4> barriers{};
    bool keyboardIsOurs = false, pointerIsOurs = false;
    QTimer retry;
    std::optional<std::chrono::steady_clock::time_point> pendingSince;
};

} // namespace quenthisar
