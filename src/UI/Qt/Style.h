// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

namespace quenthisar {

/// How buttons, fields, sliders, pickers, tabs and scroll bars look, in the colours of the
/// desktop's palette.
///
/// It also keeps two colours of ours in the palette, so that what uses them follows the desktop:
/// `PlaceholderText` is the secondary one, `Link` the accent.
class Style final : public QProxyStyle {
public:
    Style();

    void polish(QPalette& palette) override;
    using QProxyStyle::polish;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;
};

} // namespace quenthisar
