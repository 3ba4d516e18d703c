// SPDX-License-Identifier: MIT
#include "UI/Qt/Switch.h"

#include "UI/Qt/Colors.h"
#include "UI/Qt/Drawing.h"
#include "UI/Qt/Typography.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>
#include <utility>

namespace quenthisar {

namespace {

// In points.
constexpr double trackWidth = 30, trackHeight = 18, knobMargin = 2;
constexpr int spacing = 8, lineHeight = 24;

} // namespace

Switch::Switch(Binding<bool> value, const QString& text, QWidget* parent)
    : QCheckBox(text, parent), binding(std::move(value)) {
    setFont(quenthisar::font(TextRole::body));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QCheckBox::toggled, this, &Switch::write);
    refresh();
}

void Switch::write(bool isOn) {
    if (isShowing) return;
    binding.set(isOn);
    refresh();
}

void Switch::refresh() {
    const bool isOn = binding.get();
    if (isOn == isChecked()) return;
    isShowing = true;
    setChecked(isOn);
    isShowing = false;
}

QSize Switch::sizeHint() const {
    const int text = QFontMetrics(font()).horizontalAdvance(this->text());
    return {static_cast<int>(trackWidth) + 2 * inset + spacing + text, lineHeight};
}

void Switch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QStyleOption option;
    option.initFrom(this);

    const QRectF line(rect());
    const QRectF track(inset, line.center().y() - trackHeight / 2, trackWidth, trackHeight);
    constexpr double radius = trackHeight / 2;
    auto fill = isChecked() ? accentColor() : withOpacity(primaryColor(), isDark() ? 0.32 : 0.42);
    if (isDown()) fill = fill.darker(112);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(track, radius, radius);

    constexpr double knob = trackHeight - 2 * knobMargin;
    const double left = isChecked() ? track.right() - knobMargin - knob : track.left() + knobMargin;
    painter.setBrush(Qt::white);
    painter.drawEllipse(QRectF(left, track.top() + knobMargin, knob, knob));
    if (showsFocus(option)) {
        const auto ring = track.adjusted(-inset, -inset, inset, inset);
        drawFocusRing(painter, ring, radius + inset);
    }

    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(line.adjusted(track.right() + spacing, 0, 0, 0),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text());
}

} // namespace quenthisar
