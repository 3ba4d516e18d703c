// SPDX-License-Identifier: MIT
#include "UI/Qt/ScreenTileWidget.h"

#include "UI/Qt/Colors.h"
#include "UI/Qt/Drawing.h"
#include "UI/Qt/Hints.h"
#include "UI/Qt/Typography.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>
#include <cmath>
#include <utility>

namespace quenthisar {

namespace {

// In points.
constexpr double cornerRadius = 4, namePadding = 4, leastScale = 0.5;
/// Around the tile: to be hit, however small it is, and for the ring of the focus.
constexpr int surround = 3;

QRectF rectF(const Rect& rect) {
    return {rect.x, rect.y, rect.width, rect.height};
}

} // namespace

ScreenTileWidget::ScreenTileWidget(std::string screenUUID, QWidget* map)
    : QAbstractButton(map), uuid(std::move(screenUUID)) {
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    // To screen readers: one of a group.
    setCheckable(true);
    setAutoExclusive(true);
}

void ScreenTileWidget::show(const ScreenTile& next, const TileDrawing& nextDrawing) {
    setChecked(next.selected);
    setGeometry(rectF(nextDrawing.frame)
                    .adjusted(-surround, -surround, surround, surround)
                    .toAlignedRect());
    setVisible(true);
    if (next == tile && nextDrawing == drawing) return;
    tile = next;
    drawing = nextDrawing;
    const auto name = shownName(tile.name);
    setAccessibleName(name);
    setToolTip(hint(name));
    update();
}

/// In this widget's coordinates, with its sides between pixels of the screen.
QRectF ScreenTileWidget::snapped(const Rect& rect) const {
    const double scale = devicePixelRatioF();
    const QPointF origin = mapTo(window(), QPoint());
    const auto snap = [&](double position, double offset) {
        return std::round((position + offset) * scale) / scale - offset;
    };
    const auto local = rectF(rect).translated(-pos());
    return {QPointF(snap(local.left(), origin.x()), snap(local.top(), origin.y())),
            QPointF(snap(local.right(), origin.x()), snap(local.bottom(), origin.y()))};
}

void ScreenTileWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QStyleOption option;
    option.initFrom(this);

    const auto area = snapped(drawing.frame);
    const auto color = tile.selected ? accentColor() : secondaryColor();
    const double emphasis = isDown() ? 0.14 : underMouse() ? 0.08 : 0;
    const double line = tile.selected ? 2 : 1;
    const double inset = line / 2;
    painter.setPen(QPen(color, line));
    painter.setBrush(withOpacity(color, (tile.selected ? 0.18 : 0.1) + emphasis));
    painter.drawRoundedRect(area.adjusted(inset, inset, -inset, -inset), cornerRadius - inset,
                            cornerRadius - inset);
    paintName(painter, area);
    for (const auto& bar : drawing.bars)
        painter.fillRect(snapped(bar.rect), standardColor(bar.color));
    if (showsFocus(option))
        drawFocusRing(painter, area.adjusted(-surround, -surround, surround, surround),
                      cornerRadius + surround);
}

/// On one line, smaller where it must be; cut where half the size is not enough.
void ScreenTileWidget::paintName(QPainter& painter, const QRectF& area) const {
    const auto face = quenthisar::font(TextRole::caption2);
    const QFontMetricsF metrics(face);
    auto name = shownName(tile.name);
    const auto room = area.adjusted(namePadding, 0, -namePadding, 0);
    if (name.isEmpty() || room.width() <= 0) return;
    const double scale = std::min(
        {1.0, room.width() / metrics.horizontalAdvance(name), room.height() / metrics.height()});
    if (room.height() < metrics.height() * leastScale) return;
    const double used = std::max(scale, leastScale);
    if (scale < leastScale)
        name = metrics.elidedText(name, Qt::ElideRight, room.width() / leastScale);

    painter.save();
    painter.translate(area.center());
    painter.scale(used, used);
    painter.setFont(face);
    painter.setPen(primaryColor());
    const QSizeF size(room.width() / used, metrics.height());
    painter.drawText(QRectF({-size.width() / 2, -size.height() / 2}, size),
                     Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip, name);
    painter.restore();
}

void ScreenTileWidget::focusInEvent(QFocusEvent* event) {
    // As a button of a group it would take Tab from the others, and each can be reached with it.
    QWidget::focusInEvent(event); // NOLINT(bugprone-parent-virtual-call)
    update();
}

void ScreenTileWidget::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: click(); return;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Left:
    case Qt::Key_Right: event->ignore(); return; // the map's
    default: QAbstractButton::keyPressEvent(event);
    }
}

} // namespace quenthisar
