// SPDX-License-Identifier: MIT
#include "UI/Qt/Drawing.h"

#include "UI/Qt/Colors.h"

#include <QPainter>
#include <QStyleOption>

#include <algorithm>

namespace quenthisar {

namespace {

// In points.
constexpr double controlRadius = 5, boxRadius = 8, outlineWidth = 1, ringWidth = 2;

/// A rectangle whose outline lies inside `area`.
void drawRounded(QPainter& painter, const QRectF& area, double radius, const QColor& fill,
                 const QColor& outline) {
    constexpr double inset = outlineWidth / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(outline, outlineWidth));
    painter.setBrush(fill);
    painter.drawRoundedRect(area.adjusted(inset, inset, -inset, -inset), radius, radius);
    painter.restore();
}

/// A thin line that is seen on boxes and windows, light and dark.
QColor outlineColor(const QPalette& palette) {
    return withOpacity(palette.color(QPalette::WindowText), 0.28);
}

} // namespace

void drawField(QPainter& painter, const QStyleOption& option) {
    drawRounded(painter, option.rect, controlRadius, option.palette.color(QPalette::Base),
                outlineColor(option.palette));
    if (option.state & QStyle::State_HasFocus) drawFocusRing(painter, option.rect, controlRadius);
}

void drawButton(QPainter& painter, const QStyleOption& option) {
    const auto& palette = option.palette;
    const auto text = palette.color(QPalette::ButtonText);
    auto fill = palette.color(QPalette::Button);
    fill = mixed(isDark() ? text : QColor(Qt::white), fill, isDark() ? 0.12 : 0.7);
    if (option.state & (QStyle::State_Sunken | QStyle::State_On))
        fill = mixed(text, fill, 0.16);
    else if (option.state & QStyle::State_MouseOver)
        fill = mixed(text, fill, 0.06);
    drawRounded(painter, option.rect, controlRadius, fill, outlineColor(palette));
    if (showsFocus(option)) drawFocusRing(painter, option.rect, controlRadius);
}

void drawSlider(QPainter& painter, const QStyleOptionSlider& option, const QRectF& handle) {
    constexpr double lineHeight = 4, lineRadius = lineHeight / 2, margin = 1;
    const QRectF area(option.rect);
    const QRectF line(area.left() + margin, handle.center().y() - lineHeight / 2,
                      area.width() - 2 * margin, lineHeight);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(withOpacity(primaryColor(), 0.2));
    painter.drawRoundedRect(line, lineRadius, lineRadius);
    auto filled = line;
    filled.setRight(handle.center().x());
    painter.setBrush(accentColor());
    painter.drawRoundedRect(filled, lineRadius, lineRadius);
    painter.restore();

    const bool isDown = (option.activeSubControls & QStyle::SC_SliderHandle) &&
                        (option.state & QStyle::State_Sunken);
    const auto knob = handle.adjusted(margin, margin, -margin, -margin);
    const double radius = knob.height() / 2;
    drawRounded(painter, knob, radius, isDown ? QColor(0xE4, 0xE4, 0xE4) : QColor(Qt::white),
                withOpacity(Qt::black, 0.35));
    if (showsFocus(option)) drawFocusRing(painter, handle, radius + margin);
}

void drawScrollBar(QPainter& painter, const QStyleOptionSlider& option, const QRectF& handle) {
    constexpr double margin = 3;
    const bool isHeld = (option.activeSubControls & QStyle::SC_ScrollBarSlider) &&
                        (option.state & (QStyle::State_Sunken | QStyle::State_MouseOver));
    const auto bar = handle.adjusted(margin, margin, -margin, -margin);
    const double radius = std::min(bar.width(), bar.height()) / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(withOpacity(primaryColor(), isHeld ? 0.6 : 0.45));
    painter.drawRoundedRect(bar, radius, radius);
    painter.restore();
}

void drawTab(QPainter& painter, const QStyleOptionTab& option) {
    constexpr double horizontalInset = 2, verticalInset = 5;
    const auto pill =
        QRectF(option.rect)
            .adjusted(horizontalInset, verticalInset, -horizontalInset, -verticalInset);
    double opacity = 0;
    if (option.state & QStyle::State_Selected)
        opacity = 0.1;
    else if (option.state & QStyle::State_MouseOver)
        opacity = 0.05;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(withOpacity(primaryColor(), opacity));
    painter.drawRoundedRect(pill, controlRadius, controlRadius);
    painter.restore();
    if (showsFocus(option)) drawFocusRing(painter, pill, controlRadius);
}

void drawHairline(QPainter& painter, const QStyleOption& option) {
    auto line = option.rect;
    line.setTop(line.bottom());
    painter.fillRect(line, withOpacity(primaryColor(), 0.12));
}

void drawBox(QPainter& painter, const QRectF& area) {
    const auto text = primaryColor();
    drawRounded(painter, area, boxRadius, withOpacity(text, 0.045), withOpacity(text, 0.09));
}

void drawFocusRing(QPainter& painter, const QRectF& area, double radius) {
    constexpr double inset = ringWidth / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(accentColor(), ringWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(area.adjusted(inset, inset, -inset, -inset), radius, radius);
    painter.restore();
}

bool showsFocus(const QStyleOption& option) {
    constexpr auto both = QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;
    return (option.state & both) == both;
}

} // namespace quenthisar
