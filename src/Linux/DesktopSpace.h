// SPDX-License-Identifier: MIT
#pragma once

#include "Support/Geometry.h"

namespace quenthisar {

/// Converts between X's root window (origin top-left of the whole desktop, y down), global display
/// coordinates (origin top-left of the primary display, y down) and the framework's space (origin
/// bottom-left of the primary display, y up). All in pixels. Main thread.
class DesktopSpace {
public:
    /// The primary display in the root window. It changes with the list of displays that is handed
    /// out, so that points and displays always agree.
    void setPrimary(const Rect& frame) { primary = frame; }

    Point globalFromRoot(Point p) const { return {p.x - primary.x, p.y - primary.y}; }
    Rect frameworkFromRoot(const Rect& r) const {
        return {r.x - primary.x, primary.maxY() - r.maxY(), r.width, r.height};
    }
    Rect rootFromFramework(const Rect& r) const {
        return {r.x + primary.x, primary.maxY() - r.maxY(), r.width, r.height};
    }

private:
    Rect primary;
};

} // namespace quenthisar
