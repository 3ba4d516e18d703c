// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/XConnection.h"
#include "Platform/Pasteboard.h"

namespace quenthisar {

/// The CLIPBOARD selection, asked for on a connection of its own: the toolkit would block for 15 s
/// on an owner that hangs. Needs the application object.
class XPasteboard final : public Pasteboard {
public:
    XPasteboard() { open(); }

    std::optional<std::string> string() override;

    /// What a request names.
    struct Atoms {
        xcb_atom_t clipboard = XCB_ATOM_NONE;
        xcb_atom_t utf8String = XCB_ATOM_NONE;
        xcb_atom_t utf8Plain = XCB_ATOM_NONE; // as a media type
        xcb_atom_t incr = XCB_ATOM_NONE;      // a transfer in pieces
        xcb_atom_t property = XCB_ATOM_NONE;  // where the text is to be put
    };

private:
    void open();

    std::unique_ptr<XConnection> connection; // null while there is no server
    Atoms atoms;
};

} // namespace quenthisar
