// SPDX-License-Identifier: MIT
#pragma once

#include <QScrollArea>

namespace quenthisar {

/// One tab's place: what is longer than it scrolls, and follows the keyboard.
class ScrollPage final : public QScrollArea {
public:
    explicit ScrollPage(QWidget* content, QWidget* parent = nullptr);
};

} // namespace quenthisar
