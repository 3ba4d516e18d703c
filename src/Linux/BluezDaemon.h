// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/QtMainQueue.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QMap>
#include <QObject>
#include <QVariantMap>

#include <functional>

namespace quenthisar {

/// Interface name to its properties.
using BluezInterfaces = QMap<QString, QVariantMap>;
using BluezObjects = QMap<QDBusObjectPath, BluezInterfaces>;

namespace Bluez {
inline constexpr QLatin1String service{"org.bluez"};
inline constexpr QLatin1String adapter{"org.bluez.Adapter1"};
inline constexpr QLatin1String device{"org.bluez.Device1"};
inline constexpr QLatin1String gattService{"org.bluez.GattService1"};
inline constexpr QLatin1String gattCharacteristic{"org.bluez.GattCharacteristic1"};
} // namespace Bluez

/// What follows the daemon's objects. Main thread.
class BluezFollower {
public:
    virtual void presenceChanged() = 0;
    virtual void adaptersChanged() = 0;
    virtual void deviceAppeared(const QString& path) = 0;
    virtual void deviceChanged(const QString& path, const QVariantMap& changed) = 0;
    virtual void deviceVanished(const QString& path) = 0;

protected:
    ~BluezFollower() = default;
};

/// The Bluetooth daemon as seen over the bus: whether it is there, and one picture of its adapters
/// and devices. Never waits for an answer. Main thread.
class BluezDaemon final : public QObject {
    Q_OBJECT

public:
    enum class Presence {
        unknown,
        absent,  // since our start
        reading, // there, but its objects have not been read yet
        present,
        denied,
        gone,
    };
    /// How long an answer may take: D-Bus's 25 s, or for ever.
    enum class Limit { usual, none };
    using Answer = std::function<void(const QDBusMessage&)>;

    BluezDaemon(QDBusConnection bus, BluezFollower& follower);

    Presence presence() const { return currentPresence; }
    /// By object path; empty unless the daemon is present.
    const QMap<QString, QVariantMap>& adapters() const { return adapterPicture; }
    const QMap<QString, QVariantMap>& devices() const { return devicePicture; }

    /// Calls the daemon; `answer` gets its reply or error, later, as long as this object lives.
    void call(const QString& path, const QString& interface, const QString& method,
              const QVariantList& arguments, Limit limit, Answer answer);
    /// The daemon's objects as they are then, or none if it doesn't tell.
    void readObjects(std::function<void(const BluezObjects&, const QDBusMessage&)> answer);

    /// For what must not happen at once. Its actions end with this object.
    MainQueue& queue() { return ownQueue; }
    bool isFromDaemon(const QDBusMessage& message) const;
    QDBusConnection bus() const { return connection; }

private:
    Q_SLOT void nameOwnerChanged(const QDBusMessage& signal);
    Q_SLOT void interfacesAdded(const QDBusMessage& signal);
    Q_SLOT void interfacesRemoved(const QDBusMessage& signal);
    Q_SLOT void propertiesChanged(const QDBusMessage& signal);
    Q_SLOT void busLost();

    void follow(const QString& nextOwner);
    void forget(Presence next);
    void deny(const QString& denier);
    void read();
    void add(const QString& path, const BluezInterfaces& interfaces);
    void asyncCall(const QDBusMessage& message, Limit limit, Answer answer);

    QDBusConnection connection;
    BluezFollower& follower;
    Presence currentPresence = Presence::unknown;
    QString owner; // the daemon's unique name
    int denials = 0;
    QMap<QString, QVariantMap> adapterPicture, devicePicture;
    QtMainQueue ownQueue; // last, so that it goes first
};

} // namespace quenthisar
