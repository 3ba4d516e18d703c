// SPDX-License-Identifier: MIT
#pragma once

#include "Adapter.h"
#include "Agents.h"
#include "ObjectTree.h"

#include <QObject>

#include <map>
#include <memory>
#include <optional>

namespace quenthisar::dongle {

/// The Bluetooth daemon: owner of org.bluez on a connection of its own, from its start until it is
/// stopped or killed, and again. Main thread.
class Daemon final : public QObject {
public:
    struct Options {
        Delays delays;
        bool adapter = true; // there is one, hci0
        bool powered = true;
    };

    Daemon(Options options, const Dongles& dongles);
    /// As when killed.
    ~Daemon() override;

    /// False if the name isn't to be had.
    bool start();
    bool isRunning() const { return tree != nullptr; }
    /// Takes its objects away before it goes.
    void stop();
    /// Goes without a word.
    void kill();

    /// `adapter` such as "hci0"; one that never was is plugged in powered.
    void setAdapter(const QString& adapter, bool present);
    void setPowered(const QString& adapter, bool on);
    void setBlocked(const QString& adapter, bool on);
    /// Whether callers may talk to it, or are told that access is denied.
    void setAccess(bool granted);
    /// Those on the bus.
    std::vector<Adapter*> adapters() const;
    /// The one that is connected, else the first; null for a dongle that no adapter knows.
    Device* deviceOf(const Dongle& dongle) const;

private:
    /// Survives the daemon.
    struct Radio {
        bool present = true;
        bool powered = true;
        bool blocked = false;
        std::unique_ptr<Adapter> adapter;
    };

    bool call(const QDBusMessage& message);
    void addAdapter(const QString& name);
    void removeAdapters();
    void disconnect();

    Delays delays;
    const Dongles& dongles;
    std::map<QString, Radio> radios; // by name
    bool access = true;
    int starts = 0;
    std::unique_ptr<ObjectTree> tree;
    std::unique_ptr<Agents> agents;
};

} // namespace quenthisar::dongle
