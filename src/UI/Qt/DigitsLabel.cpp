// SPDX-License-Identifier: MIT
#include "UI/Qt/DigitsLabel.h"

#include "UI/Qt/Typography.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace quenthisar {

DigitsLabel::DigitsLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setFont(quenthisar::font(TextRole::caption));
}

void DigitsLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QFontMetricsF metrics(font());
    double widest = 0;
    for (char digit = '0'; digit <= '9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
    const auto widthOf = [&](QChar character) {
        return character.isDigit() ? widest : metrics.horizontalAdvance(character);
    };
    const auto widthOfAll = [&](const QString& all) {
        double sum = 0;
        for (const QChar character : all) sum += widthOf(character);
        return sum;
    };
    // The start is what counts of a number that finds no room.
    auto shown = text();
    for (auto length = shown.size(); length > 0 && widthOfAll(shown) > width(); --length)
        shown = text().first(length - 1) + QChar(u'…');
    double left = std::max(0.0, width() - widthOfAll(shown));
    painter.setPen(palette().color(foregroundRole()));
    for (const QChar character : shown) {
        const QRectF cell(left, 0, widthOf(character), height());
        painter.drawText(cell, Qt::AlignCenter | Qt::TextDontClip, QString(character));
        left += cell.width();
    }
}

} // namespace quenthisar
