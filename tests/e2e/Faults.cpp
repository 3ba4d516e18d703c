// SPDX-License-Identifier: MIT
#include "e2e/Faults.h"

#include <QDBusMessage>

namespace quenthisar::e2e {

Faults::Faults(const QString& busAddress)
    : bus(QDBusConnection::connectToBus(busAddress, QStringLiteral("faults"))) {}

Faults::~Faults() {
    QDBusConnection::disconnectFromBus(QStringLiteral("faults"));
}

bool Faults::ask(const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(
        QStringLiteral("org.quenthisar.VirtualDongle"), QStringLiteral("/"),
        QStringLiteral("org.quenthisar.VirtualDongle1"), method);
    message.setArguments(arguments);
    return bus.call(message).type() == QDBusMessage::ReplyMessage;
}

} // namespace quenthisar::e2e
