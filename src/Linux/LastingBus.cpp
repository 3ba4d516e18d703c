// SPDX-License-Identifier: MIT
#include "Linux/LastingBus.h"

#include <chrono>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds tryAgain{1};

/// The toolkit's own connections stay lost.
Bus toolkitsOwn(QDBusConnection connection, QDBusConnection::BusType type) {
    return {std::move(connection), [type] {
                static int count = 0;
                return QDBusConnection::connectToBus(type, u"quenthisar-%1"_s.arg(++count));
            }};
}

} // namespace

Bus Bus::system() {
    return toolkitsOwn(QDBusConnection::systemBus(), QDBusConnection::SystemBus);
}

Bus Bus::session() {
    return toolkitsOwn(QDBusConnection::sessionBus(), QDBusConnection::SessionBus);
}

LastingBus::LastingBus(Bus theBus, std::function<void()> onLoss, std::function<void()> onOpening)
    : bus(std::move(theBus)), lost(std::move(onLoss)), opened(std::move(onOpening)) {
    again.setSingleShot(true);
    QObject::connect(&again, &QTimer::timeout, this, [this] { openAgain(); });
    if (bus.connection.isConnected()) watch();
}

LastingBus::~LastingBus() {
    closeOwn();
}

void LastingBus::watch() {
    bus.connection.connect(QString(), u"/org/freedesktop/DBus/Local"_s,
                           u"org.freedesktop.DBus.Local"_s, u"Disconnected"_s, this,
                           SLOT(disconnected()));
}

void LastingBus::disconnected() {
    if (again.isActive()) return;
    if (bus.open) again.start(tryAgain);
    lost();
}

void LastingBus::openAgain() {
    closeOwn();
    bus.connection = bus.open();
    isOwn = true;
    if (!bus.connection.isConnected()) return again.start(tryAgain);
    watch();
    opened();
}

void LastingBus::closeOwn() {
    if (std::exchange(isOwn, false)) QDBusConnection::disconnectFromBus(bus.connection.name());
}

} // namespace quenthisar
