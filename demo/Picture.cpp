// SPDX-License-Identifier: MIT
#include "Picture.h"

#include <QPainter>
#include <QPainterPath>

namespace quenthisar::demo {

namespace {

constexpr int screenHeight = 640, margin = 56, gap = 88, labelHeight = 44, captionHeight = 60;
constexpr int bezel = 10;
const QColor paper{0xF2, 0xF3, 0xF6}, ink{0x22, 0x26, 0x2B}, amber{0xE0, 0x9A, 0x12};

QFont fontOf(int pixels, QFont::Weight weight) {
    QFont font;
    font.setPixelSize(pixels);
    font.setWeight(weight);
    return font;
}

void paintScreen(QPainter& painter, const QRect& place, const Shot& shot, const QImage& scaled) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor{0, 0, 0, 26});
    painter.drawRoundedRect(place.adjusted(-bezel, -bezel + 6, bezel, bezel + 6), 14, 14);
    painter.setBrush(ink);
    painter.drawRoundedRect(place.adjusted(-bezel, -bezel, bezel, bezel), 12, 12);
    painter.drawImage(place.topLeft(), scaled);
    painter.setPen(ink);
    painter.setFont(fontOf(22, QFont::DemiBold));
    painter.drawText(QRect{place.left(), place.bottom() + bezel + 8, place.width(), labelHeight},
                     Qt::AlignCenter, shot.label);
}

void paintArrow(QPainter& painter, QPointF from, QPointF to) {
    constexpr double head = 13;
    painter.setPen(QPen{amber, 6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin});
    painter.setBrush(Qt::NoBrush);
    QPainterPath path{from};
    path.lineTo(to);
    path.moveTo(to - QPointF{head, head});
    path.lineTo(to);
    path.lineTo(to - QPointF{head, -head});
    painter.drawPath(path);
}

} // namespace

QImage sideBySide(const Shot& host, const Shot& target, const QString& caption) {
    const auto left = host.image.scaledToHeight(screenHeight, Qt::SmoothTransformation);
    const auto right = target.image.scaledToHeight(screenHeight, Qt::SmoothTransformation);
    const QRect leftPlace{QPoint{margin, margin}, left.size()};
    const QRect rightPlace{leftPlace.topRight() + QPoint{gap, 0}, right.size()};

    QImage result{rightPlace.right() + margin,
                  margin + screenHeight + labelHeight + captionHeight + 20, QImage::Format_RGB32};
    result.fill(paper);
    QPainter painter{&result};
    painter.setRenderHint(QPainter::Antialiasing);
    paintScreen(painter, leftPlace, host, left);
    paintScreen(painter, rightPlace, target, right);
    const QPointF middle{(leftPlace.right() + rightPlace.left()) / 2.0,
                         margin + screenHeight / 2.0};
    paintArrow(painter, middle - QPointF{20, 0}, middle + QPointF{20, 0});
    painter.setPen(QColor{ink.red(), ink.green(), ink.blue(), 170});
    painter.setFont(fontOf(20, QFont::Normal));
    painter.drawText(QRect{0, result.height() - captionHeight - 12, result.width(), captionHeight},
                     Qt::AlignCenter, caption);
    return result;
}

} // namespace quenthisar::demo
