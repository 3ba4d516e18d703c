// SPDX-License-Identifier: MIT
#pragma once

#include "Agents.h"
#include "Characteristic.h"
#include "Dongle.h"
#include "ObjectTree.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

namespace quenthisar::dongle {

/// How long the daemon takes for what depends on the air.
struct Delays {
    std::chrono::milliseconds failedConnect{41'000};
    std::chrono::milliseconds disconnect{2000};
};

/// A dongle as the daemon knows it (Device1), with its link and its services. Main thread.
class Device final : public QObject {
public:
    /// What it hands to the adapter. `remove` may not be called from within.
    struct Context {
        ObjectTree& tree;
        Agents& agents;
        const Delays& delays;
        std::function<void(const QString& path)> removeLater;
    };

    /// Appears on the bus; with an RSSI where one is given.
    Device(Context context, const QString& adapter, Dongle& dongle, std::optional<short> rssi);
    /// Its link ends without a word.
    ~Device() override;

    static QString pathOf(const QString& adapter, const Dongle& dongle);
    const QString& path() const { return ownPath; }
    Dongle& dongle() const { return itsDongle; }
    bool isConnected() const { return connected; }

    /// An advertisement was received.
    void seen(short rssi);
    void scanEnded();

    bool call(const QDBusMessage& message, bool powered);
    void loseLink(const QString& reason);
    /// The adapter's power is gone: an attempt fails, a link is lost.
    void losePower();
    /// A pending attempt goes on if the dongle can be reached.
    void cameIntoRange();
    void setReading(bool reading) { input.setReading(reading); }
    void closeDescriptor() { input.closeDescriptor(); }

private:
    void connectCall(const QDBusMessage& message, bool powered);
    void disconnectCall(const QDBusMessage& message);
    void establish();
    void resolve();
    void addObjects();
    void failConnect(const QString& text);
    void set(const QString& name, const QVariant& value);
    void showName();
    void later(std::chrono::milliseconds delay, std::function<void()> action);

    Context context;
    Dongle& itsDongle;
    QString adapterPath;
    QString ownPath;
    Characteristic input;
    QTimer temporary; // runs for a device that was never connected
    QTimer failing;   // runs for an attempt
    std::optional<QDBusMessage> pendingConnect;
    std::vector<QDBusMessage> pendingDisconnects;
    bool connected = false;
    int attempt = 0; // changes with each link and attempt, so that late steps do nothing
};

} // namespace quenthisar::dongle
