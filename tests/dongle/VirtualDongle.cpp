// SPDX-License-Identifier: MIT
#include "VirtualDongle.h"

#include <QDBusObjectPath>
#include <QRegularExpression>

#include <atomic>

namespace quenthisar::dongle {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto limit = 10s;

QString uniqueName() {
    static std::atomic<int> count = 0;
    return u"test-%1"_s.arg(++count);
}

} // namespace

VirtualDongle::VirtualDongle(const QStringList& arguments)
    : program(QStringLiteral(VIRTUAL_DONGLE), arguments,
              {{u"DBUS_SYSTEM_BUS_ADDRESS"_s, privateBus.address()}}),
      connectionName(uniqueName()),
      connection(QDBusConnection::connectToBus(privateBus.address(), connectionName)) {
    program.readLineUntil([](const QString& line) { return line == u"ready"; }, limit);
    waitFor(u"powered on"_s);
}

VirtualDongle::~VirtualDongle() {
    QDBusConnection::disconnectFromBus(connectionName);
}

std::optional<QString> VirtualDongle::waitFor(const QString& start) {
    static const QRegularExpression format{uR"(^\d+ \S+ "(?:[^"\\]|\\.)*" (.*)$)"_s};
    QString what;
    const auto line = program.readLineUntil(
        [&](const QString& text) {
            what = format.match(text).captured(1);
            return what.startsWith(start);
        },
        limit);
    return line ? std::optional{what} : std::nullopt;
}

QDBusMessage VirtualDongle::call(const QString& path, const QString& interface,
                                 const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(u"org.bluez"_s, path, interface, method);
    message.setArguments(arguments);
    return connection.call(message);
}

void VirtualDongle::send(const QString& path, const QString& interface, const QString& method,
                         const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(u"org.bluez"_s, path, interface, method);
    message.setArguments(arguments);
    connection.send(message);
}

QDBusMessage VirtualDongle::fault(const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(u"org.quenthisar.VirtualDongle"_s, u"/"_s,
                                                  u"org.quenthisar.VirtualDongle1"_s, method);
    message.setArguments(arguments);
    return connection.call(message);
}

QVariant VirtualDongle::property(const QString& path, const QString& interface,
                                 const QString& name) {
    const auto reply =
        call(path, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {interface, name});
    return reply.arguments().value(0).value<QDBusVariant>().variant();
}

bool VirtualDongle::connectDongle() {
    call(u"/org/bluez/hci0"_s, u"org.bluez.Adapter1"_s, u"StartDiscovery"_s);
    return waitFor(u"discovered"_s) &&
           call(device, u"org.bluez.Device1"_s, u"Connect"_s).type() ==
               QDBusMessage::ReplyMessage &&
           waitFor(u"resolved"_s);
}

QString VirtualDongle::write(const QByteArray& bytes, const QString& type) {
    return call(characteristic, u"org.bluez.GattCharacteristic1"_s, u"WriteValue"_s,
                {bytes, QVariantMap{{u"type"_s, type}}})
        .errorName();
}

} // namespace quenthisar::dongle
