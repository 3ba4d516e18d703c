// SPDX-License-Identifier: MIT
#pragma once

#include "Support/Geometry.h"
#include "UI/ScreenMapView.h"

#include <QAbstractButton>

#include <string>
#include <vector>

namespace quenthisar {

/// Where a tile and its bars go, in the map's coordinates.
struct TileDrawing {
    Rect frame;
    struct Bar {
        Rect rect;
        NamedColor color;
        bool operator==(const Bar&) const = default;
    };
    std::vector<Bar> bars;

    bool operator==(const TileDrawing&) const = default;
};

/// One display of the map, to be chosen by click, Space or Return.
class ScreenTileWidget final : public QAbstractButton {
public:
    ScreenTileWidget(std::string screenUUID, QWidget* map);

    void show(const ScreenTile& next, const TileDrawing& nextDrawing);

    const std::string uuid;

protected:
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRectF snapped(const Rect& rect) const;
    void paintName(QPainter& painter, const QRectF& area) const;

    ScreenTile tile;
    TileDrawing drawing;
};

} // namespace quenthisar
