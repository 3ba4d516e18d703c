// SPDX-License-Identifier: MIT
#pragma once

#include "demo/XClient.h"

#include <QRect>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace quenthisar::test {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Owned = std::unique_ptr<T, Free>;

/// Looks at panels as any other client can. One that is not on screen yet is watched from its first
/// moment on.
class PanelWatch {
public:
    explicit PanelWatch(const demo::XClient& client);

    /// Windows with an opacity that no window manager manages, on screen, from bottom to top.
    std::vector<xcb_window_t> panels() const;

    /// In the root window.
    QRect frame(xcb_window_t window) const;
    bool takesInput(xcb_window_t window) const;
    /// Whether it lies above the window of `client`, or above the frame around it.
    bool isAbove(xcb_window_t panel, xcb_window_t client) const;

    struct Fades {
        std::set<std::uint32_t> in, out; // opacities, up to the full one and after it
        bool isOver = false;             // gone from the screen
        bool isOpaque() const { return in.contains(0xFFFFFFFF); }
    };
    /// What the panels have gone through since `forget`.
    const std::map<xcb_window_t, Fades>& fades();
    void forget() {
        fades();
        seen.clear();
    }

private:
    std::vector<xcb_window_t> children() const;
    std::optional<std::uint32_t> opacityOf(xcb_window_t window) const;

    const demo::XClient& x;
    xcb_connection_t* c;
    xcb_atom_t opacity;
    std::map<xcb_window_t, Fades> seen;
};

} // namespace quenthisar::test
