// SPDX-License-Identifier: MIT
#include "UI/Qt/Label.h"

#include "UI/Qt/Hints.h"

#include <QHelpEvent>
#include <QStylePainter>
#include <QToolTip>

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

void Label::cutLongText() {
    isCut = true;
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QString Label::cutText() const {
    return fontMetrics().elidedText(text(), Qt::ElideMiddle, contentsRect().width());
}

QSize Label::minimumSizeHint() const {
    const auto size = QLabel::minimumSizeHint();
    return isCut ? QSize(0, size.height()) : size;
}

bool Label::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || !isCut || cutText() == text())
        return QLabel::event(event);
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), hint(text()), this);
    return true;
}

void Label::paintEvent(QPaintEvent* event) {
    if (!isCut) return QLabel::paintEvent(event);
    QStylePainter painter(this);
    painter.drawItemText(contentsRect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         palette(), isEnabled(), cutText(), foregroundRole());
}

} // namespace quenthisar
