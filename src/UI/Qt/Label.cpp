// SPDX-License-Identifier: MIT
#include "UI/Qt/Label.h"

namespace quenthisar {

namespace {

/// Where the style keeps the colour.
QPalette::ColorRole paletteRole(TextColor color) {
    switch (color) {
    case TextColor::primary: return QPalette::WindowText;
    case TextColor::secondary: return QPalette::PlaceholderText;
    case TextColor::accent: return QPalette::Link;
    }
    return QPalette::WindowText;
}

} // namespace

Label::Label(const QString& text, TextRole role, TextColor color, QWidget* parent)
    : QLabel(text, parent) {
    setTextFormat(Qt::PlainText);
    setFont(quenthisar::font(role));
    setColor(color);
}

void Label::setColor(TextColor color) {
    if (foregroundRole() != paletteRole(color)) setForegroundRole(paletteRole(color));
}

} // namespace quenthisar
