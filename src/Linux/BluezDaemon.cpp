// SPDX-License-Identifier: MIT
#include "Linux/BluezDaemon.h"

#include "Linux/BusCall.h"

#include <QDBusArgument>

#include <limits>
#include <utility>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String busService{"org.freedesktop.DBus"};
constexpr QLatin1String objectManager{"org.freedesktop.DBus.ObjectManager"};
constexpr QLatin1String propertiesInterface{"org.freedesktop.DBus.Properties"};
constexpr QLatin1String accessDenied{"org.freedesktop.DBus.Error.AccessDenied"};
constexpr std::chrono::seconds readAgain{1};
constexpr std::chrono::seconds askAgainWhenDenied{5};

template <class Value>
Value argument(const QDBusMessage& message, qsizetype index) {
    return qdbus_cast<Value>(message.arguments().at(index));
}

} // namespace

BluezDaemon::BluezDaemon(const Bus& bus, BluezFollower& follower)
    : follower(follower), picture(follower),
      lastingBus(
          bus, [this] { forget(Presence::gone); }, [this] { listen(); }) {
    if (lastingBus.connection().isConnected())
        listen();
    else
        currentPresence = Presence::absent;
}

void BluezDaemon::listen() {
    auto& connection = lastingBus.connection();
    // No service name in the daemon's signals: Qt would wait for the bus to tell its owner. Their
    // sender is checked instead.
    connection.connect(busService, u"/org/freedesktop/DBus"_s, busService, u"NameOwnerChanged"_s,
                       {Bluez::service}, QString(), this, SLOT(nameOwnerChanged(QDBusMessage)));
    connection.connect(QString(), u"/"_s, objectManager, u"InterfacesAdded"_s, this,
                       SLOT(interfacesAdded(QDBusMessage)));
    connection.connect(QString(), u"/"_s, objectManager, u"InterfacesRemoved"_s, this,
                       SLOT(interfacesRemoved(QDBusMessage)));
    for (const auto& interface : {Bluez::adapter, Bluez::device})
        connection.connect(QString(), QString(), propertiesInterface, u"PropertiesChanged"_s,
                           {interface}, QString(), this, SLOT(propertiesChanged(QDBusMessage)));

    auto ask = QDBusMessage::createMethodCall(busService, u"/org/freedesktop/DBus"_s, busService,
                                              u"GetNameOwner"_s);
    ask << QString(Bluez::service);
    asyncCall(ask, Limit::usual, [this](const QDBusMessage& reply) {
        if (!owner.isEmpty()) return; // a change of owner came first
        if (reply.type() == QDBusMessage::ReplyMessage && reply.signature() == "s"_L1)
            follow(reply.arguments().at(0).toString());
        else if (currentPresence == Presence::unknown || currentPresence == Presence::gone)
            forget(Presence::absent);
    });
}

void BluezDaemon::asyncCall(const QDBusMessage& message, Limit limit, Answer answer) {
    const int milliseconds = limit == Limit::none ? std::numeric_limits<int>::max() : -1;
    BusCall::send(lastingBus.connection(), message, this, std::move(answer), milliseconds);
}

void BluezDaemon::call(const QString& path, const QString& interface, const QString& method,
                       const QVariantList& arguments, Limit limit, Answer answer) {
    auto message = QDBusMessage::createMethodCall(owner.isEmpty() ? Bluez::service : owner, path,
                                                  interface, method);
    message.setAutoStartService(false);
    message.setArguments(arguments);
    asyncCall(message, limit,
              [this, asked = owner, answer = std::move(answer)](const QDBusMessage& reply) {
                  answer(reply);
                  if (reply.errorName() == accessDenied && owner == asked && !asked.isEmpty())
                      deny(asked);
              });
}

void BluezDaemon::deny(const QString& denier) {
    forget(Presence::denied);
    // A policy may change with the session, and tells nobody.
    ownQueue.after(askAgainWhenDenied, [this, denier, number = ++denials] {
        if (currentPresence == Presence::denied && number == denials) follow(denier);
    });
}

void BluezDaemon::readObjects(
    std::function<void(const BluezObjects&, const QDBusMessage&)> answer) {
    call(u"/"_s, objectManager, u"GetManagedObjects"_s, {}, Limit::usual,
         [answer = std::move(answer)](const QDBusMessage& reply) {
             BluezObjects objects;
             if (reply.signature() == "a{oa{sa{sv}}}"_L1)
                 objects = argument<BluezObjects>(reply, 0);
             answer(objects, reply);
         });
}

bool BluezDaemon::isFromDaemon(const QDBusMessage& message) const {
    return !owner.isEmpty() && message.service() == owner;
}

void BluezDaemon::nameOwnerChanged(const QDBusMessage& signal) {
    if (signal.signature() != "sss"_L1) return;
    const auto previous = signal.arguments().at(1).toString();
    const auto next = signal.arguments().at(2).toString();
    if (!previous.isEmpty()) forget(Presence::gone);
    if (!next.isEmpty()) follow(next);
}

void BluezDaemon::follow(const QString& nextOwner) {
    owner = nextOwner;
    currentPresence = Presence::reading;
    follower.presenceChanged();
    read();
}

void BluezDaemon::forget(Presence next) {
    owner.clear();
    currentPresence = next;
    picture.clear();
    follower.presenceChanged();
}

void BluezDaemon::read() {
    readObjects([this, asked = owner](const BluezObjects& objects, const QDBusMessage& reply) {
        if (owner != asked) return;
        if (reply.type() == QDBusMessage::ErrorMessage) {
            ownQueue.after(readAgain, [this, asked] {
                if (owner == asked) read();
            });
            return;
        }
        // Signals before this answer are part of it.
        picture.read(objects);
        currentPresence = Presence::present;
        follower.presenceChanged();
    });
}

void BluezDaemon::interfacesAdded(const QDBusMessage& signal) {
    if (currentPresence != Presence::present || !isFromDaemon(signal) ||
        signal.signature() != "oa{sa{sv}}"_L1)
        return;
    picture.added(argument<QDBusObjectPath>(signal, 0).path(),
                  argument<BluezInterfaces>(signal, 1));
}

void BluezDaemon::interfacesRemoved(const QDBusMessage& signal) {
    if (currentPresence != Presence::present || !isFromDaemon(signal) ||
        signal.signature() != "oas"_L1)
        return;
    picture.removed(argument<QDBusObjectPath>(signal, 0).path(),
                    signal.arguments().at(1).toStringList());
}

void BluezDaemon::propertiesChanged(const QDBusMessage& signal) {
    if (currentPresence != Presence::present || !isFromDaemon(signal) ||
        signal.signature() != "sa{sv}as"_L1)
        return;
    picture.changed(signal.path(), signal.arguments().at(0).toString(),
                    argument<QVariantMap>(signal, 1), signal.arguments().at(2).toStringList());
}

} // namespace quenthisar
