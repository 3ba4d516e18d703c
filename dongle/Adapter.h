// SPDX-License-Identifier: MIT
#pragma once

#include "Device.h"

#include <QDBusServiceWatcher>
#include <QTimer>

#include <map>
#include <memory>
#include <set>
#include <vector>

namespace quenthisar::dongle {

using Dongles = std::vector<std::unique_ptr<Dongle>>;

/// The radio of the host (Adapter1 at /org/bluez/hci0) with the devices that it knows. Main thread.
class Adapter final : public QObject {
public:
    /// Appears on the bus.
    Adapter(ObjectTree& tree, Agents& agents, const Delays& delays, const Dongles& dongles,
            bool powered);
    /// Leaves it, the devices first, which end their links.
    ~Adapter() override;

    bool call(const QDBusMessage& message);
    bool isPowered() const { return powered; }
    void setPowered(bool on);

    /// None for a dongle that it doesn't know.
    Device* deviceOf(const Dongle& dongle) const;
    /// Its range, name or link is another than before.
    void dongleChanged(const Dongle& dongle);

private:
    void startDiscovery(const QDBusMessage& message);
    void stopDiscovery(const QDBusMessage& message);
    void removeDevice(const QDBusMessage& message);
    void remove(const QString& path);
    void clientGone(const QString& client);
    void setDiscovering(bool on);
    void advertise();
    void advertise(Dongle& dongle);
    Device& create(Dongle& dongle, std::optional<short> rssi);

    ObjectTree& tree;
    Agents& agents;
    const Delays& delays;
    const Dongles& dongles;
    QString path = QStringLiteral("/org/bluez/hci0");
    std::map<QString, std::unique_ptr<Device>> devices;
    std::set<QString> clients; // who asked for discovery
    QDBusServiceWatcher watcher;
    QTimer advertising;
    bool powered;
    bool discovering = false;
    short rssi = -52;
};

} // namespace quenthisar::dongle
