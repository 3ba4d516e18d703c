// SPDX-License-Identifier: MIT
#pragma once

#include "UI/ConfigView.h"

#include <QWidget>

#include <functional>
#include <optional>

class QScreen;

namespace quenthisar {

/// The configuration window: of one size, but never larger than its screen. Closing hides it; it
/// comes back where it was.
class ConfigWindowWidget final : public QWidget, public ConfigWindow {
public:
    /// Brings a window that is on screen to the front.
    using Activate = std::function<void(WId)>;

    ConfigWindowWidget(const ConfigView& view, Activate activateWindow);

    void makeKeyAndOrderFront() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void follow(QScreen* screen);
    void fit();
    void center();
    void comeBack(QPoint place);

    Activate activate;
    std::optional<QPoint> closedAt; // of its frame
    QMetaObject::Connection screenSize;
};

} // namespace quenthisar
