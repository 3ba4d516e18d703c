// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/BluezCentral.h"
#include "demo/XServer.h"
#include "support/RunUntil.h"

#include <QDBusConnection>
#include <QStringList>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace quenthisar {

using namespace Qt::StringLiterals;
using test::runUntil;

using Lines = std::vector<std::string>;

/// Uses a central as the program does: scans when it is powered on, and takes each link through
/// services and characteristic to the probe. Keeps what it was told, one line each, in order.
class CentralUser final : CentralDelegate, PeripheralDelegate {
public:
    explicit CentralUser(const Bus& bus);

    void didUpdateState() override;
    void didDiscover(const PeripheralPtr& found, const Advertisement& advertisement) override;
    void didConnect(const PeripheralPtr& connected) override;
    void didFailToConnect(const PeripheralPtr& failed, const CentralError& error) override;
    void didDisconnect(const PeripheralPtr& gone, const CentralError& error) override;
    void didDiscoverServices(Peripheral& of, const CentralError& error) override;
    void didDiscoverCharacteristics(Peripheral& of, const Service& service,
                                    const CentralError& error) override;
    void didWriteValue(Peripheral& of, const Characteristic& written,
                       const CentralError& error) override;

    bool waitFor(const std::string& line) const;
    int count(const std::string& line) const;
    /// Waits until the dongle is discovered, and connects it.
    void connect();
    void cancel() { central.cancelConnection(peripheral); }
    /// The same as far as the probe's answer.
    void makeReady();
    void send(const Payload& payload) const;
    /// Sends so many different keys; as the far end prints them.
    Lines sendKeys(int count) const;

    Lines log;
    PeripheralPtr peripheral;
    BluezCentral central;

private:
    Characteristic characteristic;
};

/// A bus of its own with a virtual dongle.
class BluezStage {
public:
    enum class Daemon { running, none };

    explicit BluezStage(Daemon daemon = Daemon::running, QStringList arguments = {});
    ~BluezStage();
    BluezStage(const BluezStage&) = delete;
    BluezStage& operator=(const BluezStage&) = delete;

    void startDaemon();
    /// A fault, by the name of its method.
    void ask(const QString& method, const QVariantList& arguments = {});
    /// A new connection to the bus, as another program has.
    QDBusConnection connect();

    /// Runs Qt's loop until the far end has written a line that contains `text`.
    bool waitForFarEnd(const QString& text);
    /// The payloads that arrived by this way ("request", "command", "descriptor"), in order.
    Lines received(const QString& way);

private:
    const QStringList& farEnd();

    demo::PrivateBus bus;
    QStringList arguments;
    std::unique_ptr<demo::ChildProcess> daemon;
    QStringList lines, connections;
};

/// The virtual dongle, as a user hears of it.
inline constexpr auto ourDongle = "discovered Zandrovelkin BLE";

/// As the far end prints it.
std::string hex(const Payload& payload);

} // namespace quenthisar
