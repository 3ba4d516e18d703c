// SPDX-License-Identifier: MIT
#include "UI/Qt/Hints.h"

#include <QTextDocument>

namespace quenthisar {

QString hint(const QString& text) {
    if (!Qt::mightBeRichText(text)) return text;
    return QStringLiteral("<qt>%1</qt>").arg(text.toHtmlEscaped());
}

} // namespace quenthisar
