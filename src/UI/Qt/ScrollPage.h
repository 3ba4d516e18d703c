// SPDX-License-Identifier: MIT
#pragma once

#include <QScrollArea>

namespace quenthisar {

/// One tab's place: what is longer than it scrolls, and follows the keyboard.
class ScrollPage final : public QScrollArea {
public:
    explicit ScrollPage(QWidget* content, QWidget* parent = nullptr);

    /// Scrolls the page that `widget` is on, if it is on one, until it is seen: later, when the
    /// place of what is new is known.
    static void reveal(QWidget& widget);
};

} // namespace quenthisar
