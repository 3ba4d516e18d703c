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
    case PE_FrameDefaultButton:
    case PE_FrameFocusRect: return; // drawn with the control
    case PE_FrameTabBarBase: return drawHairline(*painter, *option);
    default: return QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void Style::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                        const QWidget* widget) const {
    const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option);
    if (element == CE_TabBarTabShape && tab) return drawTab(*painter, *tab);
    if (element == CE_TabBarTabLabel && tab) {
        auto label = *tab;
        if (tab->state & State_Selected)
            label.palette.setColor(QPalette::WindowText, label.palette.color(QPalette::Link));
        return QProxyStyle::drawControl(element, &label, painter, widget);
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void Style::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                               QPainter* painter, const QWidget* widget) const {
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_Slider || !slider || slider->orientation != Qt::Horizontal)
        return QProxyStyle::drawComplexControl(control, option, painter, widget);
    drawSlider(*painter, *slider, subControlRect(CC_Slider, slider, SC_SliderHandle, widget));
}

int Style::pixelMetric(PixelMetric metric, const QStyleOption* option,
                       const QWidget* widget) const {
    switch (metric) {
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_TabBarTabShiftHorizontal:
    case PM_TabBarTabShiftVertical: return 0;
    case PM_SliderThickness:
    case PM_SliderControlThickness:
    case PM_SliderLength: return sliderHandleSize;
    default: return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

QSize Style::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                              const QWidget* widget) const {
    constexpr int buttonPadding = 12, tabPadding = 6;
    switch (type) {
    case CT_PushButton: return {contents.width() + 2 * buttonPadding, controlHeight};
    case CT_LineEdit: {
        const auto size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        return {size.width(), controlHeight};
    }
    case CT_TabBarTab: return {contents.width() + 2 * tabPadding, tabHeight};
    default: return QProxyStyle::sizeFromContents(type, option, contents, widget);
    }
}

int Style::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                     QStyleHintReturn* returnData) const {
    switch (hint) {
    case SH_TabBar_Alignment: return Qt::AlignCenter;
    // A click on the line of a slider moves the handle there.
    case SH_Slider_AbsoluteSetButtons: return Qt::LeftButton;
    default: return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
}

} // namespace quenthisar
