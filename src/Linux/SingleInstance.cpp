// SPDX-License-Identifier: MIT
#include "Linux/SingleInstance.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDeadlineTimer>
#include <QThread>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String name{"com.vornack.quenthisar"};
constexpr QLatin1String path{"/com/vornack/quenthisar"};
constexpr QLatin1String applicationInterface{"org.freedesktop.Application"};
constexpr QLatin1String busDaemon{"org.freedesktop.DBus"};

constexpr int answerLimit = 2000; // milliseconds
constexpr unsigned long askAgain = 10;

// The bus's own numbers.
constexpr uint doNotQueue = 4;
constexpr uint nameExists = 3;

/// The connection has a name, too: the same one each time.
QDBusConnection openBus() {
    QDBusConnection::disconnectFromBus(name);
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
}

QDBusMessage requestForName() {
    auto request = QDBusMessage::createMethodCall(busDaemon, u"/org/freedesktop/DBus"_s, busDaemon,
                                                  u"RequestName"_s);
    request << QString{name} << doNotQueue;
    return request;
}

/// True when another program has the name. A bus that does not say is as good as none.
bool isTaken(const QDBusConnection& bus) {
    const auto reply = bus.call(requestForName(), QDBus::Block, answerLimit);
    return reply.type() == QDBusMessage::ReplyMessage &&
           reply.arguments().value(0).toUInt() == nameExists;
}

/// Asks the program that has the name.
QDBusMessage ask(const QDBusConnection& bus, const QString& method, const QVariantList& arguments,
                 int limit) {
    auto request = QDBusMessage::createMethodCall(name, path, applicationInterface, method);
    request.setArguments(arguments);
    request.setAutoStartService(false);
    return bus.call(request, QDBus::Block, limit);
}

/// False when it has ended or is about to, or is silent for so many milliseconds.
bool askToActivate(const QDBusConnection& bus, int limit) {
    const auto reply = ask(bus, u"Activate"_s, {QVariantMap{}}, limit);
    if (reply.type() != QDBusMessage::ErrorMessage) return true;
    const auto error = QDBusError(reply).type();
    return error != QDBusError::ServiceUnknown && error != QDBusError::NoReply &&
           error != QDBusError::UnknownObject;
}

} // namespace

SingleInstance::SingleInstance()
    : bus(
          {openBus(), openBus}, [] {}, [this] { takeNameAgain(); }) {
    // Before the name: whoever sees that it is taken calls at once.
    bus.connection().registerObject(path, this, QDBusConnection::ExportAllSlots);
    first = takeName();
}

SingleInstance::~SingleInstance() {
    QDBusConnection::disconnectFromBus(name);
}

void SingleInstance::takeNameAgain() {
    bus.connection().registerObject(path, this, QDBusConnection::ExportAllSlots);
    // Nothing depends on the answer: this program goes on, whoever has the name.
    bus.connection().asyncCall(requestForName());
}

bool SingleInstance::askToQuit() {
    const auto reply = ask(openBus(), u"ActivateAction"_s,
                           {u"quit"_s, QVariantList{}, QVariantMap{}}, answerLimit);
    QDBusConnection::disconnectFromBus(name);
    return reply.type() == QDBusMessage::ReplyMessage;
}

bool SingleInstance::takeName() {
    const QDeadlineTimer limit(answerLimit);
    // Again if the other one ends before it has answered.
    while (isTaken(bus.connection())) {
        if (limit.hasExpired() ||
            askToActivate(bus.connection(), static_cast<int>(limit.remainingTime())))
            return false;
        QThread::msleep(askAgain);
    }
    return true;
}

void SingleInstance::stopAnswering() {
    bus.connection().unregisterObject(path);
}

void SingleInstance::ActivateAction(const QString& action, const QVariantList& /*parameter*/,
                                    const QVariantMap& /*platformData*/) {
    if (action == u"quit") quit();
}

} // namespace quenthisar
