// SPDX-License-Identifier: MIT
#include "Accessible.h"

#include "demo/ChildProcess.h"
#include "demo/Recorder.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QUuid>

#include <stdexcept>
#include <utility>

namespace quenthisar::e2e {

using namespace Qt::StringLiterals;
using Reference = Accessible::Reference;

QDBusArgument& operator<<(QDBusArgument& argument, const Reference& reference) {
    argument.beginStructure();
    argument << reference.service << reference.path;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Reference& reference) {
    argument.beginStructure();
    argument >> reference.service >> reference.path;
    argument.endStructure();
    return argument;
}

namespace {

constexpr auto accessibleInterface = "org.a11y.atspi.Accessible";
constexpr auto componentInterface = "org.a11y.atspi.Component";
constexpr auto registry = "org.a11y.atspi.Registry";
constexpr auto registryRoot = "/org/a11y/atspi/accessible/root";
// The first call starts the accessibility bus.
constexpr int answerLimit = 25'000; // ms

QVariantList answer(const QDBusConnection& bus, const QString& service, const QString& path,
                    const QString& interface, const QString& method,
                    const QVariantList& arguments = {}) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    const auto reply = bus.call(message, QDBus::Block, answerLimit);
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments() : QVariantList{};
}

QString busAddress(const QString& sessionBusAddress) {
    const auto name = QUuid::createUuid().toString();
    QVariantList reply;
    {
        const auto session = QDBusConnection::connectToBus(sessionBusAddress, name);
        reply = answer(session, u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, u"org.a11y.Bus"_s,
                       u"GetAddress"_s);
    }
    QDBusConnection::disconnectFromBus(name);
    if (reply.isEmpty()) throw std::runtime_error("the session has no accessibility bus");
    return reply.at(0).toString();
}

} // namespace

QVariantList Accessible::call(const char* interface, const char* method,
                              const QVariantList& arguments) const {
    return answer(bus, reference.service, reference.path.path(), QString::fromLatin1(interface),
                  QString::fromLatin1(method), arguments);
}

QVariant Accessible::property(const char* interface, const char* name) const {
    const auto reply = call("org.freedesktop.DBus.Properties", "Get",
                            {QString::fromLatin1(interface), QString::fromLatin1(name)});
    return reply.isEmpty() ? QVariant{} : reply.at(0).value<QDBusVariant>().variant();
}

QString Accessible::name() const {
    return property(accessibleInterface, "Name").toString();
}

QString Accessible::description() const {
    return property(accessibleInterface, "Description").toString();
}

QString Accessible::role() const {
    return call(accessibleInterface, "GetRoleName").value(0).toString();
}

bool Accessible::hasState(unsigned number) const {
    const auto words = qdbus_cast<QList<unsigned>>(call(accessibleInterface, "GetState").value(0));
    return (words.value(number / 32) >> number % 32 & 1U) != 0;
}

QString Accessible::text() const {
    return call("org.a11y.atspi.Text", "GetText", {0, -1}).value(0).toString();
}

std::optional<double> Accessible::value() const {
    const auto value = property("org.a11y.atspi.Value", "CurrentValue");
    return value.isValid() ? std::optional{value.toDouble()} : std::nullopt;
}

QList<Accessible> Accessible::children() const {
    QList<Accessible> result;
    const auto references =
        qdbus_cast<QList<Reference>>(call(accessibleInterface, "GetChildren").value(0));
    for (const auto& child : references) result.append(Accessible{bus, child});
    return result;
}

QPoint Accessible::center() const {
    const auto reply = call(componentInterface, "GetExtents", {0U});
    if (reply.isEmpty()) return {};
    int x = 0, y = 0, width = 0, height = 0;
    const auto argument = reply.at(0).value<QDBusArgument>();
    argument.beginStructure();
    argument >> x >> y >> width >> height;
    argument.endStructure();
    return {x + width / 2, y + height / 2};
}

bool Accessible::act(const QString& action) const {
    const int count = property("org.a11y.atspi.Action", "NActions").toInt();
    for (int i = 0; i < count; ++i) {
        const auto name = call("org.a11y.atspi.Action", "GetName", {i}).value(0).toString();
        if (action.isEmpty() || name == action)
            return call("org.a11y.atspi.Action", "DoAction", {i}).value(0).toBool();
    }
    return false;
}

bool Accessible::setText(const QString& to) const {
    return call("org.a11y.atspi.EditableText", "SetTextContents", {to}).value(0).toBool();
}

bool Accessible::setValue(double to) const {
    const auto message =
        QDBusMessage::createMethodCall(reference.service, reference.path.path(),
                                       u"org.freedesktop.DBus.Properties"_s, u"Set"_s)
        << u"org.a11y.atspi.Value"_s << u"CurrentValue"_s << QVariant::fromValue(QDBusVariant{to});
    return bus.call(message, QDBus::Block, answerLimit).type() == QDBusMessage::ReplyMessage;
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
    qDBusRegisterMetaType<Reference>();
    qDBusRegisterMetaType<QList<Reference>>();
    qDBusRegisterMetaType<QList<unsigned>>();
    if (!bus.isConnected()) throw std::runtime_error("the accessibility bus is out of reach");
}

AccessibleDesktop::~AccessibleDesktop() {
    QDBusConnection::disconnectFromBus(name);
}

QList<Accessible> AccessibleDesktop::programs() const {
    return Accessible{
        bus, {QString::fromLatin1(registry), QDBusObjectPath{QString::fromLatin1(registryRoot)}}}
        .children();
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
            for (const auto& program : programs())
                if ((result = program.find(isWanted))) return true;
            return false;
        },
        limit);
    return result;
}

QString AccessibleDesktop::tree() const {
    QString result;
    for (const auto& program : programs()) result += program.tree();
    return result;
}

} // namespace quenthisar::e2e
