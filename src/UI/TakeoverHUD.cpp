// SPDX-License-Identifier: MIT
#include "UI/TakeoverHUD.h"

#include <algorithm>
#include <utility>

namespace quenthisar {

namespace {

constexpr Seconds fadeIn{0.2}, fadeOut{0.3};
/// Between the panel and the sides of its display, in points.
constexpr double margin = 12;
/// Between the top of the display and a panel without an anchor.
constexpr double topDistance = 100;

/// The right and the top side lie outside.
constexpr bool contains(const Rect& f, Point p) {
    return f.minX() <= p.x && p.x < f.maxX() && f.minY() <= p.y && p.y < f.maxY();
}

/// Where a panel that is to be centred on `anchor` begins between `lower` and `upper`; where it
/// does not fit, the upper side decides.
constexpr double within(double lower, double upper, double anchor, double length) {
    return std::min(upper - length - margin, std::max(lower + margin, anchor - length / 2));
}

/// Where the bottom-left corner of a panel goes on the display `f`.
Point origin(const Rect& f, std::optional<Point> anchor, Size size) {
    if (!anchor)
        return {f.minX() + f.width / 2 - size.width / 2, f.maxY() - size.height - topDistance};
    return {within(f.minX(), f.maxX(), anchor->x, size.width),
            within(f.minY(), f.maxY(), anchor->y, size.height)};
}

} // namespace

TakeoverHUD::TakeoverHUD(MainQueue& mainQueue, Displays& allDisplays, HUDPanels& allPanels)
    : queue(mainQueue), displays(allDisplays), panels(allPanels) {}

void TakeoverHUD::show(const HUDView& view, std::optional<Point> at, Seconds autoHideAfter) {
    hide(false);
    panel = panels.create(view);
    const auto f = display(at);
    const Point middle{f.minX() + f.width / 2, f.minY() + f.height / 2};
    panel->setFrameOrigin(origin(f, at, panel->fittingSize(middle)));
    panel->setAlpha(0);
    panel->orderFrontRegardless();
    panel->animateAlpha(1, fadeIn);
    hideWork = std::make_shared<const std::function<void()>>([this] { hide(true); });
    queue.after(autoHideAfter, [weak = std::weak_ptr(hideWork)] {
        if (const auto work = weak.lock()) (*work)();
    });
}

void TakeoverHUD::hide(bool animated) {
    hideWork.reset();
    const auto shown = std::exchange(panel, nullptr);
    if (!shown) return;
    if (!animated) return shown->orderOut();
    fading.push_back(shown);
    shown->animateAlpha(0, fadeOut, guard.bind([this, faded = shown.get()] {
        faded->orderOut();
        std::erase_if(fading, [&](const auto& each) { return each.get() == faded; });
    }));
}

Rect TakeoverHUD::display(std::optional<Point> anchor) const {
    const auto screens = displays.screens();
    auto screen = screens.begin(); // the primary one
    if (anchor) {
        const auto at = std::ranges::find_if(
            screens, [&](const Screen& s) { return contains(s.frame, *anchor); });
        if (at != screens.end()) screen = at;
    }
    return screen != screens.end() ? screen->frame : Rect{};
}

} // namespace quenthisar
