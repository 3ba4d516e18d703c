// SPDX-License-Identifier: MIT
#include "Linux/TrayStatusItem.h"

#include <QCoreApplication>
#include <QPainter>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

/// A desktop that starts takes its time until its panel is there.
constexpr std::chrono::seconds waitForHost{3};

/// Of the images that panels choose from, in pixels.
constexpr std::array imageSizes{16, 18, 22, 24, 32, 36, 48, 64};

constexpr auto exported = QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals |
                          QDBusConnection::ExportAllProperties;

/// Bright with a dark rim: nothing tells whether the panel behind it is dark or light.
QImage legibleAnywhere(const DrawTemplate& draw, const StatusImage& image, int size) {
    const int rim = std::max(1, size / 18);
    const auto name = QString::fromStdString(image.name);
    const auto face = draw(name, size - 2 * rim, QColor(0xF6, 0xF6, 0xF6));
    const auto shade = draw(name, size - 2 * rim, QColor(0x30, 0x30, 0x30));
    if (face.isNull()) return {};
    QImage result(size, size, QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    for (int x = 0; x <= 2 * rim; x += rim)
        for (int y = 0; y <= 2 * rim; y += rim) painter.drawPixmap(x, y, shade);
    painter.drawPixmap(rim, rim, face);
    return result;
}

} // namespace

TrayStatusItem::TrayStatusItem(const Bus& theBus, DrawTemplate drawTemplate)
    : name(u"org.kde.StatusNotifierItem-%1-1"_s.arg(QCoreApplication::applicationPid())),
      draw(std::move(drawTemplate)), delegate{.menuNeedsUpdate = [](Menu&) {},
                                              .choose = [](const MenuItem&) {}},
      menu(forwarding()), busMenu(forwarding()), item([this] { menu.openAtPointer(); }),
      bus(
          theBus, [] {}, [this] { serve(); }) {
    patience.setSingleShot(true);
    QObject::connect(&patience, &QTimer::timeout, [this] { showWindow(); });
    patience.start(waitForHost);

    serve();
}

void TrayStatusItem::serve() {
    auto& connection = bus.connection();
    // Before the name: whoever sees it reads at once.
    connection.registerObject(StatusNotifierItem::path, &item, exported);
    connection.registerObject(StatusNotifierItem::menuPath, &busMenu, exported);
    connection.registerService(name);
    hosts = std::make_unique<StatusNotifierHosts>(connection, name, [this] { hostsChanged(); });
}

TrayStatusItem::~TrayStatusItem() {
    auto& connection = bus.connection();
    connection.unregisterService(name);
    connection.unregisterObject(StatusNotifierItem::path);
    connection.unregisterObject(StatusNotifierItem::menuPath);
}

MenuDelegate TrayStatusItem::forwarding() {
    return {.menuNeedsUpdate = [this](Menu& items) { delegate.menuNeedsUpdate(items); },
            .choose =
                [this](const MenuItem& chosen) {
                    if (chosen.action == MenuAction::terminate) return QCoreApplication::quit();
                    delegate.choose(chosen);
                }};
}

void TrayStatusItem::setImage(const StatusImage& next) {
    image = next;
    item.setImage([this] { return images(); },
                  QString::fromStdString(image.accessibilityDescription));
    if (window) showWindow();
}

/// In all sizes.
QList<QImage> TrayStatusItem::images() const {
    QList<QImage> result;
    for (const int size : imageSizes) {
        const auto drawn = legibleAnywhere(draw, image, size);
        if (drawn.isNull()) break;
        result.append(drawn);
    }
    return result;
}

void TrayStatusItem::setMenu(MenuDelegate next) {
    delegate = std::move(next);
    menuMayHaveChanged();
}

void TrayStatusItem::menuMayHaveChanged() {
    if (hosts->isThere()) busMenu.update();
}

void TrayStatusItem::hostsChanged() {
    if (!hosts->isThere()) return patience.start(waitForHost);
    patience.stop();
    window.reset();
    busMenu.update();
}

void TrayStatusItem::showWindow() {
    // The toolkit would ask the watcher too, and wait for its answer.
    if (hosts->isUnknown()) return patience.start(waitForHost);
    // It waits by itself for a tray that it can be put into.
    QIcon icon;
    for (const auto& each : images()) icon.addPixmap(QPixmap::fromImage(each));
    window = std::make_unique<QSystemTrayIcon>(icon);
    window->setToolTip(QString::fromStdString(image.accessibilityDescription));
    window->setContextMenu(&menu);
    QObject::connect(window.get(), &QSystemTrayIcon::activated, &menu,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger) menu.openAtPointer();
                     });
    window->show();
}

} // namespace quenthisar
