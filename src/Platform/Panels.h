// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Support/Geometry.h"

#include <functional>
#include <memory>

namespace quenthisar {

/// A size in points, which are the host's pixels.
struct Size {
    double width = 0, height = 0;

    bool operator==(const Size&) const = default;
};

/// A floating panel with its content: above all windows, on every desktop, full-screen ones
/// included. It never takes the focus and never catches the mouse. Destroying it orders it out.
class Panel {
public:
    virtual ~Panel() = default;

    /// The size that its content wants on the display that holds `on`, in points. Asked for before
    /// `setFrameOrigin`.
    virtual Size fittingSize(Point on) = 0;
    /// Where its bottom-left corner goes: origin at the bottom-left of the primary display, y
    /// upwards.
    virtual void setFrameOrigin(Point origin) = 0;
    /// 0: invisible; 1: opaque. At once.
    virtual void setAlpha(double alpha) = 0;
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;
    /// Brings the opacity to `alpha` over `duration`, then calls `completion`, unless the panel is
    /// gone or another animation has begun.
    virtual void animateAlpha(double alpha, Seconds duration,
                              std::function<void()> completion = {}) = 0;
};

} // namespace quenthisar
