// SPDX-License-Identifier: MIT
#pragma once

#include "UI/Qt/Typography.h"

#include <QLabel>

#include <cstdint>

namespace quenthisar {

enum class TextColor : std::uint8_t { primary, secondary, accent };

/// A text in a role and a colour; it follows the desktop's palette. Never markup: names of other
/// devices stand in it.
class Label final : public QLabel {
public:
    explicit Label(const QString& text, TextRole role = TextRole::body,
                   TextColor color = TextColor::primary, QWidget* parent = nullptr);

    void setColor(TextColor color);
    /// For names, on one line: what finds no room loses its middle, for what tells dongles of one
    /// name apart is at the end. All of it is told when the pointer rests here.
    void cutLongText();
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString cutText() const;

    bool isCut = false;
};

} // namespace quenthisar
