// SPDX-License-Identifier: MIT
#pragma once

#include "UI/Palette.h"

#include <QColor>
#include <QPalette>

namespace quenthisar {

/// Whether the desktop's windows are dark.
bool isDark();

/// How a standard colour looks on this desktop, light or dark.
QColor standardColor(NamedColor color);

// The colours of texts, and of what is drawn like them; each is legible on a window.

QColor primaryColor();
QColor secondaryColor();
/// The desktop's own for what is selected.
QColor accentColor();

/// The same for a palette that is not in use yet.
QColor secondaryColor(const QPalette& palette);
QColor accentColor(const QPalette& palette);

QColor withOpacity(QColor color, double opacity);
/// `share` of `top`, the rest of `bottom`.
QColor mixed(const QColor& top, const QColor& bottom, double share);

} // namespace quenthisar
