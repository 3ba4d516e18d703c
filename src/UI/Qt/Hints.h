// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QWidget;

namespace quenthisar {

/// A text for where the pointer rests, in which nothing is taken for markup: names of other devices
/// stand in it. Screen readers may read it too, so it stays plain where it can.
QString hint(const QString& text);

// For screen readers. They are told only when the text has changed: views set it on each refresh.

void setAccessibleName(QWidget& widget, const QString& name);
void setAccessibleDescription(QWidget& widget, const QString& description);

} // namespace quenthisar
