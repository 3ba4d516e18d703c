// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

#include <functional>
#include <utility>

namespace quenthisar {

/// A bus, and the way to connect to it anew.
struct Bus {
    /// Opens a connection that is nobody else's, and may fail.
    using Open = std::function<QDBusConnection()>;

    /// Without `open`, a bus that is lost does not come back.
    Bus(QDBusConnection connection, Open open = {}) // NOLINT(*-explicit-*): it is a bus
        : connection(std::move(connection)), open(std::move(open)) {}

    /// What DBUS_SYSTEM_BUS_ADDRESS and DBUS_SESSION_BUS_ADDRESS may name.
    static Bus system();
    static Bus session();

    QDBusConnection connection;
    Open open;
};

/// A bus that may go away and come back: then it is tried once a second. Where there was none at
/// the start, there is none. Main thread.
class LastingBus final : public QObject {
    Q_OBJECT

public:
    /// `lost` and `opened` are called later, in turn. All that was registered with a connection is
    /// gone with it.
    LastingBus(Bus bus, std::function<void()> lost, std::function<void()> opened);
    LastingBus(const LastingBus&) = delete;
    LastingBus& operator=(const LastingBus&) = delete;
    ~LastingBus() override;

    /// Until it is lost.
    QDBusConnection& connection() { return bus.connection; }
    const QDBusConnection& connection() const { return bus.connection; }

private:
    Q_SLOT void disconnected();
    void watch();
    void openAgain();
    void closeOwn();

    Bus bus;
    const std::function<void()> lost, opened;
    bool isOwn = false; // opened here
    QTimer again;
};

} // namespace quenthisar
