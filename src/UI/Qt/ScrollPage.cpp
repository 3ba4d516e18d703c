// SPDX-License-Identifier: MIT
#include "UI/Qt/ScrollPage.h"

#include <utility>

namespace quenthisar {

ScrollPage::ScrollPage(std::function<QWidget*()> makeContent, QWidget* parent)
    : QScrollArea(parent), make(std::move(makeContent)) {
    setFrameShape(NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false); // the window shows through
}

void ScrollPage::showEvent(QShowEvent* event) {
    if (make) {
        setWidget(std::exchange(make, {})());
        widget()->setAutoFillBackground(false);
    }
    QScrollArea::showEvent(event);
}

void ScrollPage::reveal(QWidget& widget) {
    constexpr int margin = 16; // in points
    const auto scroll = [&widget] {
        for (auto* above = widget.parentWidget(); above; above = above->parentWidget())
            if (auto* page = dynamic_cast<ScrollPage*>(above))
                return page->ensureWidgetVisible(&widget, margin, margin);
    };
    QMetaObject::invokeMethod(&widget, scroll, Qt::QueuedConnection);
}

} // namespace quenthisar
