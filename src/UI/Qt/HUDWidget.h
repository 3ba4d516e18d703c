// SPDX-License-Identifier: MIT
#pragma once

#include "UI/HUDView.h"

#include <QWidget>

namespace quenthisar {

/// Draws a takeover's panel: dot with glow and name in a capsule with an outline.
class HUDWidget final : public QWidget {
public:
    explicit HUDWidget(const HUDView& view);

    /// For a desktop on which windows can't be translucent: nothing outside the capsule is drawn,
    /// and nothing is seen through it.
    void makeSolid() { solid = true; }
    /// No wider than its display.
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QRectF capsule() const;
    QString shownTarget() const;
    void paintTranslucent(QPainter& painter) const;
    void paintSolid(QPainter& painter) const;
    void paintShadow(QPainter& painter) const;
    void paintDot(QPainter& painter, QPointF center) const;

    QString target;
    QColor color;
    QFont face;
    bool solid = false;
};

} // namespace quenthisar
