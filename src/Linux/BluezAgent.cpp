// SPDX-License-Identifier: MIT
#include "Linux/BluezAgent.h"

#include <utility>

namespace quenthisar {

using namespace Qt::StringLiterals;

BluezAgent::BluezAgent(QDBusConnection connection, const QString& objectPath, IsOurs isOursTest,
                       MayPair mayPairTest)
    : bus(std::move(connection)), path(objectPath), isOurs(std::move(isOursTest)),
      mayPair(std::move(mayPairTest)) {
    bus.registerObject(path, this, QDBusConnection::ExportAllSlots);
}

BluezAgent::~BluezAgent() {
    bus.unregisterObject(path);
}

void BluezAgent::serveOn(const QDBusConnection& next) {
    if (next.name() == bus.name() && bus.isConnected() && bus.objectRegisteredAt(path) == this)
        return;
    bus.unregisterObject(path);
    bus = next;
    bus.registerObject(path, this, QDBusConnection::ExportAllSlots);
}

void BluezAgent::reject() {
    sendErrorReply(u"org.bluez.Error.Rejected"_s, u"not asked for"_s);
}

void BluezAgent::RequestAuthorization(const QDBusObjectPath& device) {
    if (!isOurs(message()) || !mayPair(device.path())) reject();
}

QString BluezAgent::RequestPinCode(const QDBusObjectPath& /*device*/) {
    reject();
    return {};
}

void BluezAgent::DisplayPinCode(const QDBusObjectPath& /*device*/, const QString& /*pinCode*/) {
    reject();
}

uint BluezAgent::RequestPasskey(const QDBusObjectPath& /*device*/) {
    reject();
    return 0;
}

void BluezAgent::DisplayPasskey(const QDBusObjectPath& /*device*/, uint /*passkey*/,
                                ushort /*entered*/) {
    reject();
}

void BluezAgent::RequestConfirmation(const QDBusObjectPath& /*device*/, uint /*passkey*/) {
    reject();
}

void BluezAgent::AuthorizeService(const QDBusObjectPath& /*device*/, const QString& /*uuid*/) {
    reject();
}

} // namespace quenthisar
