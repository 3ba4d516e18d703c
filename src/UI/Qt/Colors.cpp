// SPDX-License-Identifier: MIT
#include "UI/Qt/Colors.h"

#include <QGuiApplication>
#include <QPalette>

namespace quenthisar {

bool isDark() {
    return QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

QColor standardColor(NamedColor color) {
    const auto pick = [](QRgb light, QRgb dark) { return QColor(isDark() ? dark : light); };
    switch (color) {
    case NamedColor::green: return pick(0x2F9E44, 0x51CF66);
    case NamedColor::orange: return pick(0xE8700A, 0xFF922B);
    case NamedColor::purple: return pick(0x8E44C9, 0xB876F0);
    case NamedColor::pink: return pick(0xD6336C, 0xF7659B);
    case NamedColor::teal: return pick(0x0C8599, 0x3BC9DB);
    case NamedColor::red: return pick(0xD63230, 0xFF6B6B);
    case NamedColor::yellow: return pick(0xCC9A06, 0xFFD43B);
    }
    return {};
}

} // namespace quenthisar
