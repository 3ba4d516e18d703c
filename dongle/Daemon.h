// SPDX-License-Identifier: MIT
#pragma once

#include "Adapter.h"
#include "Agents.h"
#include "ObjectTree.h"

#include <QObject>

#include <memory>
#include <optional>

namespace quenthisar::dongle {

/// The Bluetooth daemon: owner of org.bluez on a connection of its own, from its start until it is
/// stopped or killed, and again. Main thread.
class Daemon final : public QObject {
public:
    struct Options {
        Delays delays;
        bool adapter = true;
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

    void setAdapter(bool present);
    void setPowered(bool on);
    /// Whether callers may talk to it, or are told that access is denied.
    void setAccess(bool granted);
    /// Null without a daemon or without an adapter.
    Adapter* adapter() const { return radio.get(); }

private:
    bool call(const QDBusMessage& message);
    void addAdapter();
    void disconnect();

    Options options;
    const Dongles& dongles;
    bool access = true;
    int starts = 0;
    std::unique_ptr<ObjectTree> tree;
    std::unique_ptr<Agents> agents;
    std::unique_ptr<Adapter> radio;
};

} // namespace quenthisar::dongle
