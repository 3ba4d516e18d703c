// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace quenthisar {

/// A number in small letters, at the end of its place; all digits are of one width, so that a
/// changing number does not move.
class DigitsLabel final : public QLabel {
public:
    explicit DigitsLabel(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quenthisar
