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

} // namespace quenthisar
