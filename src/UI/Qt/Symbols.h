// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <QString>

class QPainter;
class QRectF;

namespace quenthisar {

/// A colour that is asked for whenever something is drawn, so that it follows the desktop.
using Tint = QColor (*)();

// The drawings in assets/symbols, by their file's name without ".svg". An unknown name draws
// nothing, and its pixmap is null.

/// `scale` is the number of pixels per point.
QPixmap symbol(const QString& name, QSize points, const QColor& tint, qreal scale);
void drawSymbol(QPainter& painter, const QRectF& area, const QString& name, const QColor& tint);
/// In any size; `selectedTint` while what bears it is selected.
QIcon symbolIcon(const QString& name, Tint tint, Tint selectedTint);
/// In one colour that stays.
QIcon symbolIcon(const QString& name, const QColor& tint);

} // namespace quenthisar
