// SPDX-License-Identifier: MIT
#pragma once

#include "UI/ScreenMapView.h"

#include <QWidget>

#include <string>
#include <vector>

namespace quenthisar {

class ScreenTileWidget;

/// Draws the map of the displays. Each display is a control of its own; the arrow keys lead from
/// one to its neighbours.
class ScreenMapWidget final : public QWidget {
public:
    /// Tab leads from `controlBefore` to the first display.
    explicit ScreenMapWidget(QWidget* controlBefore, QWidget* parent = nullptr);

    void show(ScreenMapView next);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    ScreenTileWidget* makeTile(const std::string& uuid);
    void matchTiles();
    void layOut();

    QWidget* const controlBefore;
    ScreenMapView view;
    std::vector<ScreenTileWidget*> tiles; // one for each of the view's screens
};

} // namespace quenthisar
