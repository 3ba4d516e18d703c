// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/BluezPicture.h"
#include "Linux/LastingBus.h"
#include "Linux/QtMainQueue.h"

#include <QDBusMessage>
#include <QObject>
#include <QVariantList>

#include <functional>

namespace quenthisar {

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

    BluezDaemon(const Bus& bus, BluezFollower& follower);

    Presence presence() const { return currentPresence; }
    /// By object path; empty unless the daemon is present.
    const QMap<QString, QVariantMap>& adapters() const { return picture.adapters(); }
    const QMap<QString, QVariantMap>& devices() const { return picture.devices(); }

    /// Calls the daemon; `answer` gets its reply or error, later, as long as this object lives.
    void call(const QString& path, const QString& interface, const QString& method,
              const QVariantList& arguments, Limit limit, Answer answer);
    /// The daemon's objects as they are then, or none if it doesn't tell.
    void readObjects(std::function<void(const BluezObjects&, const QDBusMessage&)> answer);

    /// For what must not happen at once. Its actions end with this object.
    MainQueue& queue() { return ownQueue; }
    bool isFromDaemon(const QDBusMessage& message) const;
    QDBusConnection bus() const { return lastingBus.connection(); }

private:
    Q_SLOT void nameOwnerChanged(const QDBusMessage& signal);
    Q_SLOT void interfacesAdded(const QDBusMessage& signal);
    Q_SLOT void interfacesRemoved(const QDBusMessage& signal);
    Q_SLOT void propertiesChanged(const QDBusMessage& signal);

    void listen();
    void follow(const QString& nextOwner);
    void forget(Presence next);
    void deny(const QString& denier);
    void read();
    void asyncCall(const QDBusMessage& message, Limit limit, Answer answer);

    BluezFollower& follower;
    Presence currentPresence = Presence::unknown;
    QString owner; // the daemon's unique name
    int denials = 0;
    BluezPicture picture;
    LastingBus lastingBus;
    QtMainQueue ownQueue; // last, so that it goes first
};

} // namespace quenthisar
