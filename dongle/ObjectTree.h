// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QMap>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <utility>
#include <vector>

namespace quenthisar::dongle {

/// The properties of an object by interface.
using Interfaces = QMap<QString, QVariantMap>;
using ManagedObjects = QMap<QDBusObjectPath, Interfaces>;

/// The objects of the daemon: ObjectManager at "/", Properties and introspection everywhere.
/// Changed properties are gathered and signalled when the main loop turns, or right before a reply
/// or another signal, whichever is first: so the daemon does it. Main thread.
class ObjectTree final : public QDBusVirtualObject {
public:
    /// True if the call is answered, or will be.
    using CallHandler = std::function<bool(const QDBusMessage&)>;

    explicit ObjectTree(QDBusConnection bus);

    /// Takes the calls that aren't answered here, Set included.
    void onCall(CallHandler handler) { callHandler = std::move(handler); }

    /// While denied, every call is answered as the bus does for a caller without permission.
    void setDenied(bool on) { denied = on; }

    void add(const QString& path, Interfaces interfaces);
    /// With everything below it, the deepest first.
    void remove(const QString& path);
    void removeAll();
    bool contains(const QString& path) const { return objects.contains(path); }

    /// An invalid value takes the property away.
    void set(const QString& path, const QString& interface, const QString& name,
             const QVariant& value);
    /// The same without a signal.
    void setSilently(const QString& path, const QString& interface, const QString& name,
                     const QVariant& value);
    void flush();

    /// Sends nothing from now on, as a process that was killed.
    void mute() { muted = true; }

    void reply(const QDBusMessage& call, const QVariantList& values = {});
    void fail(const QDBusMessage& call, const QString& error, const QString& text);
    const QDBusConnection& bus() const { return connection; }

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& from) override;

private:
    struct Change {
        QString path, interface;
        QVariantMap changed;
        QStringList invalidated;
    };

    void send(const QDBusMessage& message);
    bool handleProperties(const QDBusMessage& message);
    ManagedObjects managedObjects() const;

    QDBusConnection connection;
    CallHandler callHandler;
    QMap<QString, Interfaces> objects;
    std::vector<Change> changes;
    bool muted = false;
    bool denied = false;
};

} // namespace quenthisar::dongle
