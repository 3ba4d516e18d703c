// SPDX-License-Identifier: MIT
#pragma once

#include <QRectF>

class QPainter;
class QStyleOption;
class QStyleOptionSlider;
class QStyleOptionTab;

namespace quenthisar {

/// Of buttons, fields and pickers, in points.
inline constexpr int controlHeight = 26;
inline constexpr int sliderHandleSize = 18, tabHeight = 40, scrollBarWidth = 12;

// The shapes of controls, in the colours of the option's palette and state.

void drawField(QPainter& painter, const QStyleOption& option);
void drawButton(QPainter& painter, const QStyleOption& option);
/// With the handle in `handle`; the line is filled up to there.
void drawSlider(QPainter& painter, const QStyleOptionSlider& option, const QRectF& handle);
/// Only what is held: the rest of it shows the window.
void drawScrollBar(QPainter& painter, const QStyleOptionSlider& option, const QRectF& handle);
void drawTab(QPainter& painter, const QStyleOptionTab& option);
/// Between what is above the option's rectangle and what is below.
void drawHairline(QPainter& painter, const QStyleOption& option);
/// A lightly filled box.
void drawBox(QPainter& painter, const QRectF& area);
/// Around a control that has the keyboard; just inside `area`.
void drawFocusRing(QPainter& painter, const QRectF& area, double radius);

/// Whether a control with this state shows that it has the keyboard: after Tab, not after a click.
bool showsFocus(const QStyleOption& option);

} // namespace quenthisar
