// SPDX-License-Identifier: MIT
#pragma once

#include "UI/Binding.h"

#include <QCheckBox>

namespace quenthisar {

/// A switch with its text. It hands each change on and then shows what the store says, so that a
/// refused one falls back.
class Switch final : public QCheckBox {
public:
    /// Where it begins in its place, in points: the ring of the keyboard goes around it.
    static constexpr int inset = 3;

    Switch(Binding<bool> value, const QString& text, QWidget* parent = nullptr);

    /// Shows what the store says.
    void refresh();
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent* event) override;

private:
    void write(bool isOn);

    Binding<bool> binding;
    bool isShowing = false;
};

} // namespace quenthisar
