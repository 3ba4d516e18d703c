// SPDX-License-Identifier: MIT
#pragma once

#include "UI/Qt/Symbols.h"

#include <QAbstractButton>

namespace quenthisar {

/// A button without a border that shows a symbol.
class SymbolButton final : public QAbstractButton {
public:
    SymbolButton(const QString& symbolName, Tint symbolTint, const QString& accessibleName,
                 QWidget* parent = nullptr);

    void setSymbol(const QString& symbolName, Tint symbolTint);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString name;
    Tint tint;
};

} // namespace quenthisar
