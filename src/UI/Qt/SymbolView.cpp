// SPDX-License-Identifier: MIT
#include "UI/Qt/SymbolView.h"

#include <QPainter>

namespace quenthisar {

SymbolView::SymbolView(const QString& symbolName, int size, Tint symbolTint, QWidget* parent)
    : QWidget(parent), name(symbolName), tint(symbolTint) {
    setFixedSize(size, size);
}

void SymbolView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    drawSymbol(painter, rect(), name, tint());
}

} // namespace quenthisar
