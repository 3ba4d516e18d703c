// SPDX-License-Identifier: MIT
#include "Linux/XConnection.h"

#include <cstdint>
#include <poll.h>

namespace quenthisar {

std::unique_ptr<XConnection> XConnection::open(const char* display) {
    int number = 0;
    auto* connection = xcb_connect(display, &number);
    if (xcb_connection_has_error(connection) == 0) {
        auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
        while (number-- > 0 && screens.rem > 1) xcb_screen_next(&screens);
        if (screens.rem > 0)
            return std::unique_ptr<XConnection>(new XConnection(connection, *screens.data));
    }
    xcb_disconnect(connection);
    return nullptr;
}

void XConnection::noticeEnd() {
    pollfd socket{xcb_get_file_descriptor(connection), 0, 0};
    if (::poll(&socket, 1, 0) > 0) closed = true;
}

const xcb_query_extension_reply_t* XConnection::extension(xcb_extension_t& id) const {
    const auto* reply = xcb_get_extension_data(connection, &id);
    return reply && reply->present ? reply : nullptr;
}

xcb_rectangle_t XConnection::rootSize() const {
    const XOwned<xcb_get_geometry_reply_t> reply{
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, root()), nullptr)};
    return reply ? xcb_rectangle_t{0, 0, reply->width, reply->height} : xcb_rectangle_t{};
}

xcb_atom_t XConnection::atom(std::string_view name) const {
    const auto cookie =
        xcb_intern_atom(connection, true, static_cast<std::uint16_t>(name.size()), name.data());
    const XOwned<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(connection, cookie, nullptr)};
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace quenthisar
