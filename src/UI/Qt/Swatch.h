// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QWidget>

namespace quenthisar {

/// A small shape filled with a colour; its name says what the colour means.
class Swatch final : public QWidget {
public:
    /// A circle has a radius of half its size. In points.
    Swatch(int size, double radius, QWidget* parent = nullptr);

    void setColor(const QColor& color);
    /// For screen readers, and where the pointer rests.
    void setMeaning(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double radius;
    QColor color;
};

} // namespace quenthisar
