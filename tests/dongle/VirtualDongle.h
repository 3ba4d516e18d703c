// SPDX-License-Identifier: MIT
#pragma once

#include "demo/XServer.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariant>

#include <optional>

namespace quenthisar::dongle {

/// The program on a bus of its own, and a client of that bus.
class VirtualDongle {
public:
    explicit VirtualDongle(const QStringList& arguments = {});
    ~VirtualDongle();

    /// The meaning of the next line whose text after the name starts with `start`.
    std::optional<QString> waitFor(const QString& start);

    QDBusMessage call(const QString& path, const QString& interface, const QString& method,
                      const QVariantList& arguments = {});
    /// The same without waiting for the answer.
    void send(const QString& path, const QString& interface, const QString& method,
              const QVariantList& arguments);
    QDBusMessage fault(const QString& method, const QVariantList& arguments = {});
    QVariant property(const QString& path, const QString& interface, const QString& name);

    /// Discovers, connects and waits until the services are there.
    bool connectDongle();
    /// Writes with WriteValue; the name of the error, or empty.
    QString write(const QByteArray& bytes, const QString& type);

    demo::ChildProcess& process() { return program; }
    QDBusConnection& bus() { return connection; }

    QString device = QStringLiteral("/org/bluez/hci0/dev_C0_00_00_00_00_01");
    QString characteristic = device + QStringLiteral("/service0007/char0008");

private:
    demo::PrivateBus privateBus;
    demo::ChildProcess program;
    QString connectionName;
    QDBusConnection connection;
};

} // namespace quenthisar::dongle
