// SPDX-License-Identifier: MIT
#include "UI/Qt/Hints.h"

#include <QTextDocument>
#include <QWidget>

namespace quenthisar {

QString hint(const QString& text) {
    if (!Qt::mightBeRichText(text)) return text;
    return QStringLiteral("<qt>%1</qt>").arg(text.toHtmlEscaped());
}

void setAccessibleName(QWidget& widget, const QString& name) {
    if (widget.accessibleName() != name) widget.setAccessibleName(name);
}

void setAccessibleDescription(QWidget& widget, const QString& description) {
    if (widget.accessibleDescription() != description) widget.setAccessibleDescription(description);
}

} // namespace quenthisar
