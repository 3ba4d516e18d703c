// SPDX-License-Identifier: MIT
#pragma once

#include "UI/Palette.h"

#include <QColor>

namespace quenthisar {

/// Whether the desktop's windows are dark.
bool isDark();

/// How a standard colour looks on this desktop, light or dark.
QColor standardColor(NamedColor color);

} // namespace quenthisar
