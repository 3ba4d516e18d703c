// SPDX-License-Identifier: MIT
#include "UI/Qt/HUDWidget.h"

#include "UI/Qt/Colors.h"
#include "UI/Qt/Typography.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace quenthisar {

namespace {

// In points.
constexpr double dotSize = 14, dotGlow = 5, spacing = 11;
constexpr double horizontalPadding = 24, verticalPadding = 16;
constexpr double outlineWidth = 1.5, outlineOpacity = 0.4, glowOpacity = 0.85;
/// Around the capsule, for the shadow.
constexpr double surround = 8;
constexpr int fontSize = 20;
/// From the panel to the sides of its display.
constexpr double screenMargin = 12;
/// What stands beside the name.
constexpr double besideName = dotSize + spacing + 2 * (horizontalPadding + surround);

QPainterPath capsulePath(const QRectF& rect) {
    QPainterPath path;
    path.addRoundedRect(rect, rect.height() / 2, rect.height() / 2);
    return path;
}

/// Row by row, the same on all four sides.
QRegion capsuleRegion(const QRectF& rect) {
    const double radius = rect.height() / 2;
    QRegion region;
    for (int y = qRound(rect.top()); y < qRound(rect.bottom()); ++y) {
        const double dy = y + 0.5 - rect.center().y();
        const double inset = radius - std::sqrt(std::max(0.0, radius * radius - dy * dy));
        const int left = qRound(rect.left() + inset), right = qRound(rect.right() - inset);
        region += QRect(left, y, right - left, 1);
    }
    return region;
}

} // namespace

HUDWidget::HUDWidget(const HUDView& view)
    : target(shownName(view.target)), color(standardColor(view.color)), face(font()) {
    face.setPixelSize(fontSize);
    face.setWeight(QFont::DemiBold);
    setAccessibleName(target);
}

QSize HUDWidget::sizeHint() const {
    const QFontMetricsF metrics(face);
    const double ideal = metrics.horizontalAdvance(target) + besideName;
    const double room = screen()->size().width() - 2 * screenMargin;
    const double height = std::max(dotSize, metrics.height());
    return QSizeF(std::ceil(std::min(ideal, room)),
                  std::ceil(height + 2 * (verticalPadding + surround)))
        .toSize();
}

/// What finds no room loses its middle: what tells dongles of one name apart is at the end.
QString HUDWidget::shownTarget() const {
    const QFontMetricsF metrics(face);
    const double room = width() - besideName;
    return metrics.horizontalAdvance(target) <= room
               ? target
               : metrics.elidedText(target, Qt::ElideMiddle, room);
}

QRectF HUDWidget::capsule() const {
    return QRectF(rect()).adjusted(surround, surround, -surround, -surround);
}

void HUDWidget::resizeEvent(QResizeEvent*) {
    if (solid) setMask(capsuleRegion(capsule()));
}

void HUDWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto area = capsule();
    if (solid)
        paintSolid(painter);
    else
        paintTranslucent(painter);

    const double left = area.left() + horizontalPadding;
    paintDot(painter, {left + dotSize / 2, area.center().y()});
    painter.setFont(face);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(area.adjusted(horizontalPadding + dotSize + spacing, 0, 0, 0),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shownTarget());
}

void HUDWidget::paintTranslucent(QPainter& painter) const {
    paintShadow(painter);
    painter.setPen(Qt::NoPen);
    painter.setBrush(withOpacity(palette().color(QPalette::Window), 0.86));
    painter.drawPath(capsulePath(capsule()));

    constexpr double inset = outlineWidth / 2;
    painter.setPen(QPen(withOpacity(color, outlineOpacity), outlineWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(capsulePath(capsule().adjusted(inset, inset, -inset, -inset)));
}

/// The outline goes on outside the capsule: the mask is made of whole pixels, and what it leaves of
/// them must not be black.
void HUDWidget::paintSolid(QPainter& painter) const {
    const auto ground = palette().color(QPalette::Window);
    painter.fillRect(rect(), ground);
    painter.fillRect(rect(), withOpacity(color, outlineOpacity));
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawPath(
        capsulePath(capsule().adjusted(outlineWidth, outlineWidth, -outlineWidth, -outlineWidth)));
}

/// Rings that grow fainter with their distance from the capsule; none lies beneath it.
void HUDWidget::paintShadow(QPainter& painter) const {
    constexpr double opacity = 0.024;
    constexpr int rings = static_cast<int>(surround) - 1;
    QPainterPath outside;
    outside.addRect(rect());
    painter.save();
    painter.setClipPath(outside.subtracted(capsulePath(capsule())));
    painter.setPen(Qt::NoPen);
    painter.setBrush(withOpacity(Qt::black, opacity));
    for (int ring = 1; ring <= rings; ++ring)
        painter.drawPath(capsulePath(capsule().adjusted(-ring, 1 - ring, ring, ring + 1)));
    painter.restore();
}

void HUDWidget::paintDot(QPainter& painter, QPointF center) const {
    constexpr double reach = dotSize / 2 + 2 * dotGlow;
    QRadialGradient glow(center, reach);
    glow.setColorAt(0, withOpacity(color, glowOpacity));
    glow.setColorAt(dotSize / 2 / reach, withOpacity(color, glowOpacity * 0.6));
    glow.setColorAt(0.75, withOpacity(color, glowOpacity * 0.12));
    glow.setColorAt(1, withOpacity(color, 0));
    painter.setPen(Qt::NoPen);
    painter.setBrush(glow);
    painter.drawEllipse(center, reach, reach);
    painter.setBrush(color);
    painter.drawEllipse(center, dotSize / 2, dotSize / 2);
}

} // namespace quenthisar
