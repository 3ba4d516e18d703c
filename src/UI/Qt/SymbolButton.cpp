// SPDX-License-Identifier: MIT
#include "UI/Qt/SymbolButton.h"

#include "UI/Qt/Colors.h"
#include "UI/Qt/Drawing.h"

#include <QPainter>
#include <QStyleOption>

namespace quenthisar {

namespace {

// In points.
constexpr int side = 26;
constexpr double symbolSize = 16, radius = 5;

} // namespace

SymbolButton::SymbolButton(const QString& symbolName, Tint symbolTint,
                           const QString& accessibleName, QWidget* parent)
    : QAbstractButton(parent), name(symbolName), tint(symbolTint) {
    setAccessibleName(accessibleName);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void SymbolButton::setSymbol(const QString& symbolName, Tint symbolTint) {
    if (name == symbolName && tint == symbolTint) return;
    name = symbolName;
    tint = symbolTint;
    update();
}

QSize SymbolButton::sizeHint() const {
    return {side, side};
}

void SymbolButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QStyleOption option;
    option.initFrom(this);
    if (isDown() || underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(withOpacity(primaryColor(), isDown() ? 0.18 : 0.08));
        painter.drawRoundedRect(rect(), radius, radius);
    }
    QRectF area(0, 0, symbolSize, symbolSize);
    area.moveCenter(QRectF(rect()).center());
    drawSymbol(painter, area, name, tint());
    if (showsFocus(option)) drawFocusRing(painter, rect(), radius);
}

} // namespace quenthisar
