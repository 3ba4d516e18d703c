// SPDX-License-Identifier: MIT
#pragma once

#include <QScrollArea>

#include <functional>

namespace quenthisar {

/// One tab's place: what is longer than it scrolls, and follows the keyboard.
class ScrollPage final : public QScrollArea {
public:
    /// `makeContent` is called when the page is first shown, and its widget is the page's then.
    explicit ScrollPage(std::function<QWidget*()> makeContent, QWidget* parent = nullptr);

    /// Scrolls the page that `widget` is on, if it is on one, until it is seen: later, when the
    /// place of what is new is known.
    static void reveal(QWidget& widget);

protected:
    void showEvent(QShowEvent* event) override;

private:
    std::function<QWidget*()> make; // none once it was called
};

} // namespace quenthisar
