// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/BluezDaemon.h"
#include "Linux/BluezPayloadWriter.h"
#include "Linux/BluezSighting.h"
#include "Platform/Central.h"
#include "Support/WeakGuard.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace quenthisar {

class BluezPeripheral;

/// What a peripheral's link tells the central, never inside a call to the peripheral.
class BluezLinkObserver {
public:
    virtual void linkUp(BluezPeripheral& peripheral) = 0;
    virtual void linkFailed(BluezPeripheral& peripheral, const CentralError& error) = 0;
    virtual void linkDown(BluezPeripheral& peripheral, const CentralError& error) = 0;

protected:
    ~BluezLinkObserver() = default;
};

/// One device address. Its state is this program's own: the daemon may hold a link that nobody here
/// has asked for.
class BluezPeripheral final : public Peripheral {
public:
    BluezPeripheral(BluezDaemon& daemon, BluezLinkObserver& observer, const Uuid& identifier);

    Uuid identifier() const override { return id; }
    std::optional<std::string> name() const override { return shownName; }
    PeripheralState state() const override { return currentState; }
    void setDelegate(PeripheralDelegate* next) override { delegate = next; }
    void discoverServices(const Uuid& filter) override;
    const std::vector<Service>& services() const override { return discovered; }
    void discoverCharacteristics(const Uuid& filter, const Service& service) override;
    void writeValue(const Payload& value, const Characteristic& characteristic,
                    WriteType type) override;

    /// The central's part. `path` is the daemon's object of the device. During a link or an attempt
    /// it stays the one that has it.
    void appeared(const QString& path);
    /// The object is gone, and a link with it.
    void vanished();
    void changed(const QVariantMap& properties);
    /// True if the name is another one than before.
    bool setName(const std::optional<std::string>& name);

    /// Answered by `linkUp` or `linkFailed`. Nothing if not disconnected.
    void connect();
    /// Answered by `linkDown`. Nothing if there is neither a link nor an attempt.
    void cancel();

    const QString& path() const { return devicePath; }
    /// From `linkUp` to `linkDown`.
    bool isLinked() const {
        return currentState == PeripheralState::connected ||
               currentState == PeripheralState::disconnecting;
    }
    /// Whether a write with response is under way, which may make the daemon pair.
    bool awaitsAnswer() const;
    bool isDrained() const;
    void flush();

    BluezSighting sighting;

private:
    void connectAnswered(const QDBusMessage& reply);
    void becomeConnectedIfReady();
    void fail(const CentralError& error);
    void endLink(const CentralError& reason);
    void loseLink(const CentralError& error);
    void hopeless();
    void takeServices(const Uuid& filter, const BluezObjects& objects);
    BluezPayloadWriter& writerFor(const Characteristic& characteristic);
    void later(std::function<void()> action);

    BluezDaemon& daemon;
    BluezLinkObserver& observer;
    Uuid id;
    std::optional<std::string> shownName;
    PeripheralDelegate* delegate = nullptr;
    QString devicePath;
    PeripheralState currentState = PeripheralState::disconnected;
    std::uint64_t attempt = 0; // tells the answers of this one from those of earlier ones
    bool accepted = false;     // the daemon has answered this attempt's Connect
    BluezObjects objects;      // as read by the last discovery of services
    std::vector<Service> discovered;
    std::vector<std::unique_ptr<BluezPayloadWriter>> writers;
    WeakGuard guard;
};

} // namespace quenthisar
