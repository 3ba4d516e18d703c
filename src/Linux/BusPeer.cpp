// SPDX-License-Identifier: MIT
#include "Linux/BusPeer.h"

#include <QDBusPendingCallWatcher>

#include <utility>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String busService{"org.freedesktop.DBus"};
constexpr QLatin1String propertiesInterface{"org.freedesktop.DBus.Properties"};

} // namespace

BusPeer::BusPeer(QDBusConnection bus, const QString& name, std::function<void()> changed)
    : connection(std::move(bus)), ownerChanged(std::move(changed)) {
    if (!connection.isConnected()) return;
    // Signals are asked for without a sender's name: Qt would wait for the bus to tell its owner.
    connection.connect(busService, u"/org/freedesktop/DBus"_s, busService, u"NameOwnerChanged"_s,
                       {name}, QString(), this, SLOT(nameOwnerChanged(QDBusMessage)));
    connection.connect(QString(), u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
                       u"Disconnected"_s, this, SLOT(busLost()));

    auto ask = QDBusMessage::createMethodCall(busService, u"/org/freedesktop/DBus"_s, busService,
                                              u"GetNameOwner"_s);
    ask << name;
    asyncCall(ask, [this](const QDBusMessage& reply) {
        if (isKnown) return; // a change came first
        if (reply.type() == QDBusMessage::ReplyMessage && reply.signature() == "s"_L1)
            setOwner(reply.arguments().at(0).toString());
    });
}

void BusPeer::subscribe(const QString& path, const QString& interface, const QString& signal,
                        QObject* receiver, const char* slot, const QString& firstArgument) {
    const auto match = firstArgument.isEmpty() ? QStringList{} : QStringList{firstArgument};
    connection.connect(QString(), path, interface, signal, match, QString(), receiver, slot);
}

void BusPeer::asyncCall(const QDBusMessage& message, Answer answer) {
    auto* watcher = new QDBusPendingCallWatcher(connection.asyncCall(message), this);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this,
                     [watcher, answer = std::move(answer)] {
                         watcher->deleteLater();
                         answer(watcher->reply());
                     });
}

void BusPeer::call(const QString& path, const QString& interface, const QString& method,
                   const QVariantList& arguments, Answer answer) {
    if (!isThere()) return;
    auto message = QDBusMessage::createMethodCall(owner, path, interface, method);
    message.setAutoStartService(false);
    message.setArguments(arguments);
    asyncCall(message,
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

void BusPeer::busLost() {
    setOwner({});
}

void BusPeer::setOwner(const QString& next) {
    isKnown = true;
    if (next == owner) return;
    owner = next;
    ownerChanged();
}

} // namespace quenthisar
