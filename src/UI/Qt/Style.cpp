// SPDX-License-Identifier: MIT
#include "UI/Qt/Style.h"

#include "UI/Qt/Colors.h"
#include "UI/Qt/Drawing.h"

#include <QPainter>
#include <QStyleOption>

#include <algorithm>

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
    if (control == CC_ScrollBar && slider)
        return drawScrollBar(*painter, *slider,
                             subControlRect(control, slider, SC_ScrollBarSlider, widget));
    if (control != CC_Slider || !slider || slider->orientation != Qt::Horizontal)
        return QProxyStyle::drawComplexControl(control, option, painter, widget);
    drawSlider(*painter, *slider, subControlRect(CC_Slider, slider, SC_SliderHandle, widget));
}

/// A scroll bar without arrows.
QRect Style::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                            SubControl part, const QWidget* widget) const {
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || !bar)
        return QProxyStyle::subControlRect(control, option, part, widget);
    constexpr int shortest = 28;
    const bool isFlat = bar->orientation == Qt::Horizontal;
    const int length = isFlat ? bar->rect.width() : bar->rect.height();
    const qint64 range = qint64{bar->maximum} - bar->minimum;
    const auto share = static_cast<int>(qint64{bar->pageStep} * length / (range + bar->pageStep));
    const int handle = std::min(std::max(share, shortest), length);
    const int start = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition,
                                              length - handle, bar->upsideDown);
    const auto stretch = [&](int from, int to) {
        const auto place = isFlat ? QRect(from, 0, to - from, bar->rect.height())
                                  : QRect(0, from, bar->rect.width(), to - from);
        return visualRect(bar->direction, bar->rect, place.translated(bar->rect.topLeft()));
    };
    switch (part) {
    case SC_ScrollBarSubPage: return stretch(0, start);
    case SC_ScrollBarSlider: return stretch(start, start + handle);
    case SC_ScrollBarAddPage: return stretch(start + handle, length);
    case SC_ScrollBarGroove: return bar->rect;
    default: return {};
    }
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
    case PM_ScrollBarExtent: return scrollBarWidth;
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
