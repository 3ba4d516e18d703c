// SPDX-License-Identifier: MIT
#include "UI/Qt/Colors.h"

#include <QGuiApplication>

#include <algorithm>
#include <cmath>

namespace quenthisar {

namespace {

/// What small text needs.
constexpr double legibleContrast = 4.5;

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

/// `color`, as little nearer to the colour of texts as it takes to be legible.
QColor legible(const QColor& color, const QPalette& palette) {
    constexpr int steps = 20;
    const auto text = palette.color(QPalette::Active, QPalette::WindowText);
    const auto window = palette.color(QPalette::Active, QPalette::Window);
    for (int step = 0; step < steps; ++step) {
        const auto candidate = mixed(text, color, static_cast<double>(step) / steps);
        if (contrast(candidate, window) >= legibleContrast) return candidate;
    }
    return text;
}

} // namespace

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

QColor primaryColor() {
    return QGuiApplication::palette().color(QPalette::Active, QPalette::WindowText);
}

QColor secondaryColor() {
    return secondaryColor(QGuiApplication::palette());
}

QColor accentColor() {
    return accentColor(QGuiApplication::palette());
}

QColor secondaryColor(const QPalette& palette) {
    constexpr double strength = 0.66;
    const auto text = palette.color(QPalette::Active, QPalette::WindowText);
    const auto window = palette.color(QPalette::Active, QPalette::Window);
    return legible(mixed(text, window, strength), palette);
}

QColor accentColor(const QPalette& palette) {
    return legible(palette.color(QPalette::Active, QPalette::Highlight), palette);
}

QColor withOpacity(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

QColor mixed(const QColor& top, const QColor& bottom, double share) {
    const auto mix = [share](float a, float b) {
        return static_cast<float>(share * a + (1 - share) * b);
    };
    return QColor::fromRgbF(mix(top.redF(), bottom.redF()), mix(top.greenF(), bottom.greenF()),
                            mix(top.blueF(), bottom.blueF()));
}

} // namespace quenthisar
