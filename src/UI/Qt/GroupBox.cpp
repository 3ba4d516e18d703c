// SPDX-License-Identifier: MIT
#include "UI/Qt/GroupBox.h"

#include "UI/Qt/Drawing.h"
#include "UI/Qt/Label.h"

#include <QPainter>
#include <QVBoxLayout>

namespace quenthisar {

namespace {

// In points.
constexpr int padding = 10, titleSpacing = 5, titleIndent = 2;

} // namespace

GroupBox::GroupBox(const QString& title, QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins({});
    outer->setSpacing(titleSpacing);
    if (!title.isEmpty()) {
        auto* label = new Label(title, TextRole::headline);
        label->setIndent(titleIndent);
        outer->addWidget(label);
        setAccessibleName(title);
    }
    contentLayout = new QVBoxLayout;
    contentLayout->setContentsMargins(padding, padding, padding, padding);
    outer->addLayout(contentLayout);
}

void GroupBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    drawBox(painter, contentLayout->geometry());
}

} // namespace quenthisar
