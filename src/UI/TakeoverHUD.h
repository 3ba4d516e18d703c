// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Displays.h"
#include "Support/WeakGuard.h"
#include "UI/HUDView.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quenthisar {

/// Tells where the input goes: a small panel that comes for a moment and goes by itself. One at a
/// time; each `show` makes a new one. Main thread.
class TakeoverHUD {
public:
    TakeoverHUD(MainQueue& queue, Displays& displays, HUDPanels& panels);

    /// Replaces any panel at once. `at` is where its centre goes: origin at the bottom-left of the
    /// primary display, y upwards; none: near the top of the primary display.
    void show(const HUDView& view, std::optional<Point> at, Seconds autoHideAfter);

    /// Removes the panel, if there is one, and cancels its automatic end. One that fades out is no
    /// longer the panel.
    void hide(bool animated);

private:
    /// The display that is meant; an empty rectangle where there is none.
    Rect display(std::optional<Point> anchor) const;

    MainQueue& queue;
    Displays& displays;
    HUDPanels& panels;
    std::shared_ptr<Panel> panel;
    std::vector<std::shared_ptr<Panel>> fading;            // no longer the panel, not gone yet
    std::shared_ptr<const std::function<void()>> hideWork; // cancelled by its destruction
    WeakGuard guard;
};

} // namespace quenthisar
