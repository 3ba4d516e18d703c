// SPDX-License-Identifier: MIT
#include "Linux/BusPeer.h"

#include <utility>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String busService{"org.freedesktop.DBus"};
constexpr QLatin1String propertiesInterface{"org.freedesktop.DBus.Properties"};

} // namespace

BusPeer::BusPeer(const Bus& theBus, const QString& itsName, std::function<void()> changed)
    : name(itsName), ownerChanged(std::move(changed)),
      bus(
          theBus, [this] { setOwner({}); }, [this] { listen(); }) {
    if (bus.connection().isConnected()) listen();
}

void BusPeer::listen() {
    isKnown = false;
    // Signals are asked for without a sender's name: Qt would wait for the bus to tell its owner.
    bus.connection().connect(busService, u"/org/freedesktop/DBus"_s, busService,
                             u"NameOwnerChanged"_s, {name}, QString(), this,
                             SLOT(nameOwnerChanged(QDBusMessage)));
    for (const auto& each : subscriptions) connectTo(each);

    auto ask = QDBusMessage::createMethodCall(busService, u"/org/freedesktop/DBus"_s, busService,
                                              u"GetNameOwner"_s);
    ask << name;
    BusCall::send(bus.connection(), ask, this, [this](const QDBusMessage& reply) {
        if (isKnown) return; // a change came first
        if (reply.type() == QDBusMessage::ReplyMessage && reply.signature() == "s"_L1)
            setOwner(reply.arguments().at(0).toString());
    });
}

void BusPeer::subscribe(const QString& path, const QString& interface, const QString& signal,
                        QObject* receiver, const char* slot, const QString& firstArgument) {
    const auto match = firstArgument.isEmpty() ? QStringList{} : QStringList{firstArgument};
    subscriptions.push_back({path, interface, signal, match, receiver, slot});
    connectTo(subscriptions.back());
}

void BusPeer::connectTo(const Subscription& each) {
    bus.connection().connect(QString(), each.path, each.interface, each.signal, each.match,
                             QString(), each.receiver, each.slot);
}

void BusPeer::call(const QString& path, const QString& interface, const QString& method,
                   const QVariantList& arguments, Answer answer) {
    if (!isThere()) return;
    auto message = QDBusMessage::createMethodCall(owner, path, interface, method);
    message.setAutoStartService(false);
    message.setArguments(arguments);
    BusCall::send(bus.connection(), message, this,
                  [this, asked = owner, answer = std::move(answer)](const QDBusMessage& reply) {
                      if (owner == asked) answer(reply);
                  });
}

void BusPeer::get(const QString& path, const QString& interface, const QString& property,
                  Answer answer) {
    call(path, propertiesInterface, u"Get"_s, {interface, property}, std::move(answer));
}

void BusPeer::getAll(const QString& path, const QString& interface, Answer answer) {
    call(path, propertiesInterface, u"GetAll"_s, {interface}, std::move(answer));
}

void BusPeer::nameOwnerChanged(const QDBusMessage& signal) {
    if (signal.signature() != "sss"_L1) return;
    setOwner({});
    setOwner(signal.arguments().at(2).toString());
}

void BusPeer::setOwner(const QString& next) {
    isKnown = true;
    if (next == owner) return;
    owner = next;
    ownerChanged();
}

} // namespace quenthisar
