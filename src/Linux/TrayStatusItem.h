// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/DBusMenu.h"
#include "Linux/LastingBus.h"
#include "Linux/StatusNotifierHosts.h"
#include "Linux/StatusNotifierItem.h"
#include "Linux/TrayMenu.h"
#include "Platform/StatusItem.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QTimer>

#include <functional>
#include <memory>

namespace quenthisar {

/// Draws an image by its name in one colour, `pixels` wide and high; a null one if there is no such
/// image.
using DrawTemplate = std::function<QPixmap(const QString& name, int pixels, const QColor& tint)>;

/// A status item in whatever tray the desktop has: a panel that reads it over the bus or, if there
/// is none for some seconds, one into which it puts a window (XEmbed). Trays may come late, go and
/// come back. Main thread.
class TrayStatusItem final : public StatusItem {
public:
    TrayStatusItem(const Bus& bus, DrawTemplate draw);
    TrayStatusItem(const TrayStatusItem&) = delete;
    TrayStatusItem& operator=(const TrayStatusItem&) = delete;
    ~TrayStatusItem() override;

    void setImage(const StatusImage& image) override;
    void setMenu(MenuDelegate delegate) override;
    void menuMayHaveChanged() override;

private:
    MenuDelegate forwarding();
    void serve();
    QList<QImage> images() const;
    void hostsChanged();
    void showWindow();

    const QString name; // on the bus
    const DrawTemplate draw;
    MenuDelegate delegate;
    StatusImage image;
    TrayMenu menu;
    DBusMenu busMenu;
    StatusNotifierItem item;
    QTimer patience;
    std::unique_ptr<QSystemTrayIcon> window;
    std::unique_ptr<StatusNotifierHosts> hosts;
    LastingBus bus; // last, so that it goes first
};

/// Makes status items.
class TrayStatusBar final : public StatusBar {
public:
    TrayStatusBar(Bus theBus, DrawTemplate drawTemplate)
        : bus(std::move(theBus)), draw(std::move(drawTemplate)) {}

    std::unique_ptr<StatusItem> statusItem() override {
        return std::make_unique<TrayStatusItem>(bus, draw);
    }

private:
    Bus bus;
    DrawTemplate draw;
};

} // namespace quenthisar
