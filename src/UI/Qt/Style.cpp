// SPDX-License-Identifier: MIT
#include "UI/Qt/Style.h"

#include "UI/Qt/Colors.h"
#include "UI/Qt/Drawing.h"

#include <QPainter>
#include <QStyleOption>

namespace quenthisar {

Style::Style() : QProxyStyle(QStringLiteral("Fusion")) {}

void Style::polish(QPalette& palette) {
    QProxyStyle::polish(palette);
    palette.setColor(QPalette::PlaceholderText, secondaryColor(palette));
    palette.setColor(QPalette::Link, accentColor(palette));
}

void Style::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                          const QWidget* widget) const {
    switch (element) {
    case PE_PanelLineEdit: return drawField(*painter, *option);
    case PE_PanelButtonCommand: return drawButton(*painter, *option);
    case PE_FrameLineEdit:
    case PE_FrameDefaultButton: return;
    // Drawn with the control.
    case PE_FrameFocusRect: return;
    default: return QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

int Style::pixelMetric(PixelMetric metric, const QStyleOption* option,
                       const QWidget* widget) const {
    switch (metric) {
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical: return 0;
    default: return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

QSize Style::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                              const QWidget* widget) const {
    constexpr int buttonPadding = 12;
    switch (type) {
    case CT_PushButton: return {contents.width() + 2 * buttonPadding, controlHeight};
    case CT_LineEdit: {
        const auto size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        return {size.width(), controlHeight};
    }
    default: return QProxyStyle::sizeFromContents(type, option, contents, widget);
    }
}

} // namespace quenthisar
