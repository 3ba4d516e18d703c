// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>

namespace quenthisar {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

/// What xcb allocates and its caller frees: replies, events, errors.
template <class T>
using XOwned = std::unique_ptr<T, FreeDeleter>;

/// Tells events of a connection that the server sent before it came to a certain request.
class OldestSequence {
public:
    /// What was sent before this request is out of date from now on.
    void set(unsigned request) { oldest = request; }

    bool isBefore(std::uint32_t eventSequence) {
        if (oldest && static_cast<std::int32_t>(eventSequence - *oldest) < 0) return true;
        // All that follow are newer, until the numbers have gone round.
        oldest.reset();
        return false;
    }

private:
    std::optional<std::uint32_t> oldest;
};

/// A connection to the X server of the session. Calls on a lost one return at once, without reply.
class XConnection {
public:
    /// None when no server answers at `display` (null: what DISPLAY names).
    static std::unique_ptr<XConnection> open(const char* display = nullptr);
    ~XConnection() { xcb_disconnect(connection); }
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    xcb_connection_t* get() const { return connection; }
    xcb_window_t root() const { return screen.root; }
    bool isLost() const { return closed || xcb_connection_has_error(connection) != 0; }
    /// Looks whether the server has closed it. If so it is lost from now on, whatever the server
    /// had sent before that.
    void noticeEnd();
    void flush() const { xcb_flush(connection); }

    /// The extension's numbers, or null when the server lacks it.
    const xcb_query_extension_reply_t* extension(xcb_extension_t& id) const;
    /// The size of the root window in pixels; 0 by 0 when the connection is lost.
    xcb_rectangle_t rootSize() const;
    /// `XCB_ATOM_NONE` if no client has named it yet.
    xcb_atom_t atom(std::string_view name) const;

private:
    XConnection(xcb_connection_t* opened, const xcb_screen_t& chosen)
        : connection(opened), screen(chosen) {}

    xcb_connection_t* connection;
    const xcb_screen_t& screen;
    bool closed = false;
};

} // namespace quenthisar
