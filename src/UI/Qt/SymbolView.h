// SPDX-License-Identifier: MIT
#pragma once

#include "UI/Qt/Symbols.h"

#include <QWidget>

namespace quenthisar {

/// Shows a symbol; to screen readers it is not there.
class SymbolView final : public QWidget {
public:
    /// `size` in points.
    SymbolView(const QString& symbolName, int size, Tint symbolTint, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString name;
    Tint tint;
};

} // namespace quenthisar
