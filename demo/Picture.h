// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

namespace quenthisar::demo {

/// A screen with what stands below it.
struct Shot {
    QImage image;
    QString label;
};

/// Both screens side by side, the bound edge marked between them, and a caption. Needs a
/// QGuiApplication.
QImage sideBySide(const Shot& host, const Shot& target, const QString& caption);

} // namespace quenthisar::demo
