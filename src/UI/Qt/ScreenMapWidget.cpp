// SPDX-License-Identifier: MIT
#include "UI/Qt/ScreenMapWidget.h"

#include "UI/Qt/Colors.h"
#include "UI/Qt/ScreenTileWidget.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace quenthisar {

namespace {

// In points.
constexpr int mapHeight = 160;
constexpr double cornerRadius = 6, backgroundOpacity = 0.06;

std::optional<Edge> direction(int key) {
    switch (key) {
    case Qt::Key_Up: return Edge::top;
    case Qt::Key_Down: return Edge::bottom;
    case Qt::Key_Left: return Edge::left;
    case Qt::Key_Right: return Edge::right;
    default: return std::nullopt;
    }
}

} // namespace

ScreenMapWidget::ScreenMapWidget(QWidget* before, QWidget* parent)
    : QWidget(parent), controlBefore(before) {
    setFixedHeight(mapHeight);
    setAccessibleName(tr("Map of the displays"));
}

void ScreenMapWidget::show(ScreenMapView next) {
    const bool isOfTheSame =
        std::ranges::equal(view.screens, next.screens, {}, &ScreenInfo::uuid, &ScreenInfo::uuid);
    view = std::move(next);
    if (!isOfTheSame) matchTiles();
    layOut();
}

/// The tile of a display that is still there is kept, with the focus.
void ScreenMapWidget::matchTiles() {
    auto previous = std::exchange(tiles, {});
    QWidget* before = controlBefore;
    for (const auto& screen : view.screens) {
        const auto it = std::ranges::find(previous, screen.uuid, &ScreenTileWidget::uuid);
        if (it != previous.end()) {
            tiles.push_back(*it);
            previous.erase(it);
        } else {
            tiles.push_back(makeTile(screen.uuid));
        }
        setTabOrder(before, tiles.back());
        before = tiles.back();
    }
    for (auto* gone : previous) {
        gone->hide();
        gone->deleteLater(); // it may be the one that was clicked
    }
}

ScreenTileWidget* ScreenMapWidget::makeTile(const std::string& uuid) {
    auto* tile = new ScreenTileWidget(uuid, this);
    connect(tile, &QAbstractButton::clicked, this, [this, uuid] {
        if (view.onSelect) view.onSelect(uuid);
    });
    return tile;
}

void ScreenMapWidget::layOut() {
    const auto frames = view.tileRects(width(), height());
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        const auto& screen = view.screens[i];
        TileDrawing drawing{frames[i], {}};
        for (const auto edge : allEdges) {
            const auto color = view.edgeColor ? view.edgeColor(screen, edge) : std::nullopt;
            if (!color) continue;
            for (const auto& bar : view.barRects(screen, edge, frames[i]))
                drawing.bars.push_back({bar, *color});
        }
        tiles[i]->show({screen.name, screen.uuid == view.selectedUUID}, drawing);
    }
}

void ScreenMapWidget::resizeEvent(QResizeEvent*) {
    layOut();
}

void ScreenMapWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(withOpacity(secondaryColor(), backgroundOpacity));
    painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
}

void ScreenMapWidget::keyPressEvent(QKeyEvent* event) {
    const auto towards = direction(event->key());
    const auto it = std::ranges::find_if(tiles, [](const auto* tile) { return tile->hasFocus(); });
    if (!towards || it == tiles.end()) {
        QWidget::keyPressEvent(event);
        return;
    }
    const auto of = static_cast<std::size_t>(it - tiles.begin());
    if (const auto next = view.neighbour(of, *towards)) tiles[*next]->setFocus(Qt::TabFocusReason);
}

} // namespace quenthisar
