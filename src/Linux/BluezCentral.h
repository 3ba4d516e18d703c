// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/BluezAgent.h"
#include "Linux/BluezDaemon.h"
#include "Linux/BluezDiscovery.h"
#include "Linux/BluezPeripheral.h"
#include "Platform/Central.h"
#include "Support/WeakGuard.h"

#include <QDBusConnection>

#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>

namespace quenthisar {

/// The central over BlueZ, the Bluetooth daemon of Linux. Everything is asked for without waiting.
/// The first powered adapter counts; another takes its place when it goes. Needs Qt's event loop.
class BluezCentral final : public Central, private BluezFollower, private BluezLinkObserver {
public:
    /// On the system bus.
    BluezCentral() : BluezCentral(Bus::system()) {}
    explicit BluezCentral(const Bus& bus);

    void setDelegate(CentralDelegate* next) override;
    CentralState state() const override { return currentState; }
    void scanForPeripherals(const Uuid& service) override;
    void connect(const PeripheralPtr& peripheral) override;
    void cancelConnection(const PeripheralPtr& peripheral) override;

    /// Gets the daemon's objects of the peripherals that are linked, in order, when they change;
    /// before anything is written to a new one, and not before the link of an old one has ended.
    using LinksObserver = std::function<void(const QStringList& objectPaths)>;
    void onLinks(LinksObserver observer) { linksObserver = std::move(observer); }

    /// Waits, blocking, until the daemon has taken everything that was written, at most `limit`;
    /// false if it has not.
    /// For the end of the program, after the event loop: what needs the loop, such as payloads
    /// that wait for the probe's answer, stays where it is.
    bool drain(std::chrono::milliseconds limit);

private:
    using BluezPeripheralPtr = std::shared_ptr<BluezPeripheral>;

    void presenceChanged() override;
    void adaptersChanged() override { update(); }
    void deviceAppeared(const QString& path) override;
    void deviceChanged(const QString& path, const QVariantMap& changed) override;
    void deviceVanished(const QString& path) override;
    void linkUp(BluezPeripheral& peripheral) override;
    void linkFailed(BluezPeripheral& peripheral, const CentralError& error) override;
    void linkDown(BluezPeripheral& peripheral, const CentralError& error) override;

    void registerAgent();
    void update();
    void leaveAdapter();
    void enterAdapter();
    void beginScan();
    CentralState derivedState() const;
    QString chosenAdapter() const;
    bool isPowered(const QString& adapterPath) const;
    bool isOnOurAdapter(const QVariantMap& device) const;
    bool offersService(const QVariantMap& device) const;
    BluezPeripheralPtr known(const QVariantMap& device) const;
    BluezPeripheralPtr at(const QString& path) const;
    void sign(const QString& path, const QVariantMap& device);
    void discover(const BluezPeripheralPtr& peripheral);
    BluezPeripheralPtr shared(const BluezPeripheral& peripheral) const;
    void reportLinks();

    BluezDaemon daemon;
    BluezAgent agent;
    BluezDiscovery discovery;
    CentralDelegate* delegate = nullptr;
    CentralState currentState = CentralState::unknown;
    QString adapter; // the path of the one that counts; empty for none
    std::optional<Uuid> scannedService;
    LinksObserver linksObserver;
    QStringList links;
    std::unordered_map<Uuid, BluezPeripheralPtr> peripherals;
    WeakGuard guard;
};

} // namespace quenthisar
