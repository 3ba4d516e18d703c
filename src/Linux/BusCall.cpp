// SPDX-License-Identifier: MIT
#include "Linux/BusCall.h"

#include <QCoreApplication>

#include <utility>

namespace quenthisar {

// Its receiver has to live as long as the bus's thread may know it, whatever becomes of `context`.
BusCall::BusCall(const QDBusConnection& theBus, QObject* theContext, Answer theAnswer)
    : QObject(QCoreApplication::instance()), bus(theBus), context(theContext),
      answer(std::move(theAnswer)) {}

// Not a pending call and its watcher: a reply that comes before there is a watcher is told after
// the signals that follow it.
void BusCall::send(const QDBusConnection& bus, const QDBusMessage& message, QObject* context,
                   Answer answer, int milliseconds) {
    auto* call = new BusCall(bus, context, std::move(answer));
    const bool isSent = bus.callWithCallback(message, call, SLOT(replied(QDBusMessage)),
                                             SLOT(failed(QDBusError, QDBusMessage)), milliseconds);
    if (isSent) return;
    const auto error = QDBusError(QDBusError::Disconnected, QStringLiteral("There is no bus"));
    QMetaObject::invokeMethod(
        call, [call, error, message] { call->failed(error, message); }, Qt::QueuedConnection);
}

void BusCall::replied(const QDBusMessage& reply) {
    deleteLater();
    if (context) answer(reply);
}

void BusCall::failed(const QDBusError& error, const QDBusMessage& message) {
    replied(message.type() == QDBusMessage::ErrorMessage ? message
                                                         : message.createErrorReply(error));
}

} // namespace quenthisar
