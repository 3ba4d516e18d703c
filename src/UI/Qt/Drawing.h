// SPDX-License-Identifier: MIT
#pragma once

#include <QRectF>

class QPainter;
class QStyleOption;

namespace quenthisar {

/// Of buttons, fields and pickers, in points.
inline constexpr int controlHeight = 26;

// The shapes of controls, in the colours of the option's palette and state.

void drawField(QPainter& painter, const QStyleOption& option);
void drawButton(QPainter& painter, const QStyleOption& option);
/// A lightly filled box.
void drawBox(QPainter& painter, const QRectF& area);
/// Around a control that has the keyboard; just inside `area`.
void drawFocusRing(QPainter& painter, const QRectF& area, double radius);

/// Whether a control with this state shows that it has the keyboard: after Tab, not after a click.
bool showsFocus(const QStyleOption& option);

} // namespace quenthisar
