// SPDX-License-Identifier: MIT
#include "UI/Qt/Symbols.h"

#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <functional>
#include <utility>

namespace quenthisar {

namespace {

/// Draws the symbol anew for each size and colour.
class SymbolEngine final : public QIconEngine {
public:
    using TintFor = std::function<QColor(QIcon::State)>;

    SymbolEngine(QString symbolName, TintFor tints)
        : name(std::move(symbolName)), tint(std::move(tints)) {}

    void paint(QPainter* painter, const QRect& area, QIcon::Mode, QIcon::State state) override {
        drawSymbol(*painter, area, name, tint(state));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1);
    }
    QPixmap scaledPixmap(const QSize& pixels, QIcon::Mode, QIcon::State state,
                         qreal /*scale*/) override {
        return symbol(name, pixels, tint(state), 1);
    }
    QIconEngine* clone() const override { return new SymbolEngine(name, tint); }

private:
    QString name;
    TintFor tint;
};

} // namespace

QPixmap symbol(const QString& name, QSize points, const QColor& tint, qreal scale) {
    const QSize pixels = points * scale;
    const auto key = QStringLiteral("symbol %1 %2x%3 %4")
                         .arg(name)
                         .arg(pixels.width())
                         .arg(pixels.height())
                         .arg(tint.rgba());
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        QSvgRenderer renderer(QStringLiteral(":/symbols/%1.svg").arg(name));
        if (!renderer.isValid()) return {};
        pixmap = QPixmap(pixels);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        renderer.render(&painter, QRectF({}, QSizeF(pixels)));
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(pixmap.rect(), tint);
        painter.end();
        QPixmapCache::insert(key, pixmap);
    }
    pixmap.setDevicePixelRatio(scale);
    return pixmap;
}

void drawSymbol(QPainter& painter, const QRectF& area, const QString& name, const QColor& tint) {
    const auto scale = painter.device()->devicePixelRatioF();
    painter.drawPixmap(area.topLeft(), symbol(name, area.size().toSize(), tint, scale));
}

QIcon symbolIcon(const QString& name, Tint tint, Tint selectedTint) {
    return QIcon(new SymbolEngine(name, [tint, selectedTint](QIcon::State state) {
        return state == QIcon::On ? selectedTint() : tint();
    }));
}

QIcon symbolIcon(const QString& name, const QColor& tint) {
    return QIcon(new SymbolEngine(name, [tint](QIcon::State) { return tint; }));
}

} // namespace quenthisar
