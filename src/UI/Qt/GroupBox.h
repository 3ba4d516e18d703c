// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QVBoxLayout;

namespace quenthisar {

/// A rounded, lightly filled box, as wide as it may be; its title, if it has one, stands above it.
class GroupBox : public QWidget {
public:
    explicit GroupBox(const QString& title = {}, QWidget* parent = nullptr);

    /// Where the content goes.
    QVBoxLayout* content() const { return contentLayout; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* contentLayout;
};

} // namespace quenthisar
