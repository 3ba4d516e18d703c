// SPDX-License-Identifier: MIT
#include "UI/Qt/Typography.h"

#include "Support/Text.h"

#include <QApplication>

namespace quenthisar {

namespace {

/// In points of the view.
constexpr int size(TextRole role) {
    switch (role) {
    case TextRole::body:
    case TextRole::headline: return 13;
    case TextRole::callout: return 12;
    case TextRole::caption: return 11;
    case TextRole::caption2: return 10;
    }
    return 13;
}

} // namespace

QString shownName(const std::string& name) {
    return QString::fromStdString(Text::onOneLine(name));
}

QFont font(TextRole role) {
    QFont result = QApplication::font();
    result.setPixelSize(size(role));
    result.setWeight(role == TextRole::headline ? QFont::DemiBold : QFont::Normal);
    return result;
}

} // namespace quenthisar
