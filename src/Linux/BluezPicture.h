// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusObjectPath>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantMap>

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

/// The daemon's adapters and devices with their properties, as it tells of them: names and values
/// are taken as they come. The follower hears of a change once it is in the picture.
class BluezPicture {
public:
    explicit BluezPicture(BluezFollower& observer) : follower(observer) {}

    /// By object path.
    const QMap<QString, QVariantMap>& adapters() const { return adapterPicture; }
    const QMap<QString, QVariantMap>& devices() const { return devicePicture; }

    // Of these two the follower does not hear.

    void clear();
    void read(const BluezObjects& objects);

    // What the daemon's signals tell.

    void added(const QString& path, const BluezInterfaces& interfaces);
    void removed(const QString& path, const QStringList& interfaces);
    /// `gone`: the names of properties that have no value any more.
    void changed(const QString& path, const QString& interface, const QVariantMap& properties,
                 const QStringList& gone);

private:
    void add(const QString& path, const BluezInterfaces& interfaces);

    BluezFollower& follower;
    QMap<QString, QVariantMap> adapterPicture, devicePicture;
};

} // namespace quenthisar
