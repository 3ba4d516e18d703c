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

/// A radio of the host (Adapter1 at /org/bluez/NAME) with the devices that it knows. Main thread.
class Adapter final : public QObject {
public:
    /// Appears on the bus. `name` such as "hci0".
    Adapter(ObjectTree& tree, Agents& agents, const Delays& delays, const Dongles& dongles,
            const QString& name, bool powered);
    /// Leaves it, the devices first, which end their links.
    ~Adapter() override;

    bool call(const QDBusMessage& message);
    /// Without effect while blocked, and so is a client's wish.
    void setPowered(bool on);
    /// By rfkill, which switches it off.
    void setBlocked(bool on);

    /// None for a dongle that it doesn't know.
    Device* deviceOf(const Dongle& dongle) const;
    /// Its range, name or link is another than before.
    void dongleChanged(const Dongle& dongle);

private:
    void setPoweredCall(const QDBusMessage& message);
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
    QString name;
    QString path = QStringLiteral("/org/bluez/") + name;
    std::map<QString, std::unique_ptr<Device>> devices;
    std::set<QString> clients; // who asked for discovery
    QDBusServiceWatcher watcher;
    QTimer advertising;
    bool powered;
    bool blocked = false;
    bool discovering = false;
    short rssi = -52;
};

} // namespace quenthisar::dongle
