// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/DesktopSpace.h"
#include "Platform/Panels.h"

#include <QVariantAnimation>
#include <QWidget>

#include <functional>
#include <memory>

namespace quenthisar {

/// A floating panel on an X desktop: no window manager manages it, and no input reaches it. Main
/// thread.
class XPanel final : public Panel {
public:
    /// `content` fills the panel; `space` outlives it.
    XPanel(const DesktopSpace& space, std::unique_ptr<QWidget> content);
    ~XPanel() override;

    /// Whether something draws windows with their opacity. Without it a panel is as opaque as its
    /// content.
    static bool isComposited();

    Size fittingSize(Point on) override;
    void setFrameOrigin(Point origin) override;
    void setAlpha(double alpha) override;
    void orderFrontRegardless() override;
    void orderOut() override;
    void animateAlpha(double alpha, Seconds duration, std::function<void()> completion) override;

private:
    std::uint32_t window() const;
    void tellToolkit() const;
    void placeExactly() const;
    void takeNoInput() const;

    const DesktopSpace& space;
    std::unique_ptr<QWidget> content;
    QVariantAnimation animation;
    std::function<void()> completed;
    QPoint place; // of its top-left corner in the root window, in pixels
};

} // namespace quenthisar
