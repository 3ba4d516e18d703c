// SPDX-License-Identifier: MIT
#include "Accessible.h"

#include "demo/Recorder.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QUuid>

#include <stdexcept>
#include <utility>

namespace quenthisar::e2e {

using namespace Qt::StringLiterals;

namespace {

/// The first value of the answer; none if there is no answer.
QVariant answer(const QDBusConnection& bus, const Accessible::Reference& to,
                const QString& interface, const QString& method,
                const QVariantList& arguments = {}) {
    auto message = QDBusMessage::createMethodCall(to.service, to.path.path(), interface, method);
    message.setArguments(arguments);
    constexpr int limit = 25'000; // ms: the first call starts the accessibility bus
    const auto reply = bus.call(message, QDBus::Block, limit);
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0) : QVariant{};
}

QString busAddress(const QString& sessionBusAddress) {
    const auto name = QUuid::createUuid().toString();
    QString address;
    {
        const auto session = QDBusConnection::connectToBus(sessionBusAddress, name);
        address = answer(session, {u"org.a11y.Bus"_s, QDBusObjectPath{u"/org/a11y/bus"_s}},
                         u"org.a11y.Bus"_s, u"GetAddress"_s)
                      .toString();
    }
    QDBusConnection::disconnectFromBus(name);
    if (address.isEmpty()) throw std::runtime_error("the session has no accessibility bus");
    return address;
}

} // namespace

QVariant Accessible::call(const char* interface, const char* method,
                          const QVariantList& arguments) const {
    return answer(bus, reference, u"org.a11y.atspi."_s + QLatin1StringView{interface},
                  QString::fromLatin1(method), arguments);
}

QVariant Accessible::property(const char* interface, const char* name) const {
    return answer(bus, reference, u"org.freedesktop.DBus.Properties"_s, u"Get"_s,
                  {u"org.a11y.atspi."_s + QLatin1StringView{interface}, QString::fromLatin1(name)})
        .value<QDBusVariant>()
        .variant();
}

QString Accessible::role() const {
    return call("Accessible", "GetRoleName").toString();
}

bool Accessible::hasState(unsigned number) const {
    const auto words = qdbus_cast<QList<unsigned>>(call("Accessible", "GetState"));
    return (words.value(number / 32) >> number % 32 & 1U) != 0;
}

QString Accessible::text() const {
    return call("Text", "GetText", {0, -1}).toString();
}

QList<Accessible> Accessible::children() const {
    QList<Accessible> result;
    const auto reply = call("Accessible", "GetChildren");
    if (!reply.isValid()) return result; // it has gone
    const auto list = reply.value<QDBusArgument>();
    for (list.beginArray(); !list.atEnd();) {
        Reference child;
        list.beginStructure();
        list >> child.service >> child.path;
        list.endStructure();
        result.append(Accessible{bus, child});
    }
    list.endArray();
    return result;
}

QPoint Accessible::center() const {
    int x = 0, y = 0, width = 0, height = 0;
    const auto extents = call("Component", "GetExtents", {0U}).value<QDBusArgument>();
    extents.beginStructure();
    extents >> x >> y >> width >> height;
    extents.endStructure();
    return {x + width / 2, y + height / 2};
}

std::optional<Accessible>
Accessible::find(const std::function<bool(const Accessible&)>& wanted) const {
    if (wanted(*this)) return *this;
    for (const auto& child : children())
        if (auto found = child.find(wanted)) return found;
    return std::nullopt;
}

QString Accessible::tree(int depth) const {
    auto result = u"%1%2 \"%3\"\n"_s.arg(QString(2 * depth, u' '), role(), name());
    for (const auto& child : children()) result += child.tree(depth + 1);
    return result;
}

AccessibleDesktop::AccessibleDesktop(const QString& sessionBusAddress)
    : name(QUuid::createUuid().toString()),
      bus(QDBusConnection::connectToBus(busAddress(sessionBusAddress), name)) {
    if (!bus.isConnected()) throw std::runtime_error("the accessibility bus is out of reach");
}

AccessibleDesktop::~AccessibleDesktop() {
    QDBusConnection::disconnectFromBus(name);
}

Accessible AccessibleDesktop::registry() const {
    return {bus,
            {u"org.a11y.atspi.Registry"_s, QDBusObjectPath{u"/org/a11y/atspi/accessible/root"_s}}};
}

std::optional<Accessible> AccessibleDesktop::element(const QString& role, const QString& name,
                                                     std::chrono::milliseconds limit) const {
    std::optional<Accessible> result;
    const auto isWanted = [&](const Accessible& each) {
        return each.role() == role && (each.name() == name || each.description() == name) &&
               each.isShowing();
    };
    demo::waitUntil(
        [&] {
            result = registry().find(isWanted);
            return result.has_value();
        },
        limit);
    return result;
}

} // namespace quenthisar::e2e
