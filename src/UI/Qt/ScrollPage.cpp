// SPDX-License-Identifier: MIT
#include "UI/Qt/ScrollPage.h"

namespace quenthisar {

ScrollPage::ScrollPage(QWidget* content, QWidget* parent) : QScrollArea(parent) {
    setFrameShape(NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setWidget(content);
    // The window shows through.
    content->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
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
