// SPDX-License-Identifier: MIT
#include "UI/Qt/Swatch.h"

#include <QPainter>

namespace quenthisar {

Swatch::Swatch(int size, double cornerRadius, QWidget* parent)
    : QWidget(parent), radius(cornerRadius) {
    setFixedSize(size, size);
}

void Swatch::setColor(const QColor& next) {
    if (color == next) return;
    color = next;
    update();
}

void Swatch::setMeaning(const QString& text) {
    if (accessibleName() == text) return;
    setAccessibleName(text);
    setToolTip(text);
}

void Swatch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(QRectF(rect()), radius, radius);
}

} // namespace quenthisar
