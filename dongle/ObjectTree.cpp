// SPDX-License-Identifier: MIT
#include "ObjectTree.h"

#include "Later.h"

#include <QDBusMetaType>

#include <algorithm>
#include <utility>

namespace quenthisar::dongle {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString objectManager = u"org.freedesktop.DBus.ObjectManager"_s;
const QString propertiesInterface = u"org.freedesktop.DBus.Properties"_s;
const QString introspectable = u"org.freedesktop.DBus.Introspectable"_s;

bool isBelow(const QString& path, const QString& ancestor) {
    return path == ancestor || path.startsWith(ancestor + u'/');
}

} // namespace

ObjectTree::ObjectTree(QDBusConnection bus) : connection(std::move(bus)) {
    qDBusRegisterMetaType<Interfaces>();
    qDBusRegisterMetaType<ManagedObjects>();
}

void ObjectTree::send(const QDBusMessage& message) {
    if (!muted) connection.send(message);
}

void ObjectTree::add(const QString& path, Interfaces interfaces) {
    flush();
    interfaces.insert(introspectable, {});
    interfaces.insert(propertiesInterface, {});
    objects.insert(path, interfaces);
    auto signal = QDBusMessage::createSignal(u"/"_s, objectManager, u"InterfacesAdded"_s);
    signal << QVariant::fromValue(QDBusObjectPath{path}) << QVariant::fromValue(interfaces);
    send(signal);
}

void ObjectTree::remove(const QString& path) {
    flush();
    const auto paths = objects.keys();
    for (auto it = paths.crbegin(); it != paths.crend(); ++it) {
        if (!isBelow(*it, path)) continue;
        auto signal = QDBusMessage::createSignal(u"/"_s, objectManager, u"InterfacesRemoved"_s);
        signal << QVariant::fromValue(QDBusObjectPath{*it})
               << QStringList(objects.value(*it).keys());
        objects.remove(*it);
        send(signal);
    }
}

void ObjectTree::removeAll() {
    const auto paths = objects.keys();
    for (auto it = paths.crbegin(); it != paths.crend(); ++it) remove(*it);
}

void ObjectTree::set(const QString& path, const QString& interface, const QString& name,
                     const QVariant& value) {
    if (!objects.contains(path)) return;
    auto& properties = objects[path][interface];
    if (properties.value(name) == value && properties.contains(name) == value.isValid()) return;

    auto change = std::ranges::find_if(
        changes, [&](const Change& c) { return c.path == path && c.interface == interface; });
    if (change == changes.end()) {
        if (changes.empty()) later(0ms, this, [this] { flush(); });
        change = changes.insert(changes.end(), {path, interface, {}, {}});
    }
    if (value.isValid()) {
        properties.insert(name, value);
        change->changed.insert(name, value);
        change->invalidated.removeAll(name);
    } else {
        properties.remove(name);
        change->changed.remove(name);
        change->invalidated += name;
    }
}

void ObjectTree::setSilently(const QString& path, const QString& interface, const QString& name,
                             const QVariant& value) {
    if (objects.contains(path)) objects[path][interface].insert(name, value);
}

void ObjectTree::flush() {
    for (const auto& change : std::exchange(changes, {})) {
        auto signal =
            QDBusMessage::createSignal(change.path, propertiesInterface, u"PropertiesChanged"_s);
        signal << change.interface << change.changed << change.invalidated;
        send(signal);
    }
}

void ObjectTree::reply(const QDBusMessage& call, const QVariantList& values) {
    flush();
    send(call.createReply(values));
}

void ObjectTree::fail(const QDBusMessage& call, const QString& error, const QString& text) {
    flush();
    send(call.createErrorReply(error, text));
}

ManagedObjects ObjectTree::managedObjects() const {
    ManagedObjects all;
    for (auto it = objects.cbegin(); it != objects.cend(); ++it)
        all.insert(QDBusObjectPath{it.key()}, it.value());
    return all;
}

bool ObjectTree::handleProperties(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    const auto interface = arguments.value(0).toString();
    const auto found = objects.constFind(message.path());
    if (found == objects.cend() || !found->contains(interface)) {
        fail(message, u"org.freedesktop.DBus.Error.InvalidArgs"_s,
             u"No such interface '%1'"_s.arg(interface));
        return true;
    }
    const auto properties = found->value(interface);
    if (message.member() == u"GetAll") {
        reply(message, {properties});
        return true;
    }
    const auto name = arguments.value(1).toString();
    if (!properties.contains(name)) {
        fail(message, u"org.freedesktop.DBus.Error.InvalidArgs"_s,
             u"No such property '%1'"_s.arg(name));
        return true;
    }
    if (message.member() != u"Get") return false;
    reply(message, {QVariant::fromValue(QDBusVariant{properties.value(name)})});
    return true;
}

bool ObjectTree::handleMessage(const QDBusMessage& message, const QDBusConnection& /*from*/) {
    if (denied) {
        fail(message, u"org.freedesktop.DBus.Error.AccessDenied"_s, u"Rejected send message"_s);
        return true;
    }
    if (message.interface() == introspectable ||
        message.interface() == u"org.freedesktop.DBus.Peer")
        return false;
    if (message.path() == u"/" && message.member() == u"GetManagedObjects") {
        reply(message, {QVariant::fromValue(managedObjects())});
        return true;
    }
    if (message.interface() == propertiesInterface && handleProperties(message)) return true;
    if (callHandler && callHandler(message)) return true;
    const auto error = objects.contains(message.path()) ? u"UnknownMethod"_s : u"UnknownObject"_s;
    fail(message, u"org.freedesktop.DBus.Error."_s + error,
         u"Method \"%1\" with signature \"%2\" on interface \"%3\" doesn't exist\n"_s.arg(
             message.member(), message.signature(), message.interface()));
    return true;
}

QString ObjectTree::introspect(const QString& path) const {
    QString xml;
    const auto interfaces = objects.value(path);
    for (auto it = interfaces.cbegin(); it != interfaces.cend(); ++it) {
        xml += u"<interface name=\"%1\">"_s.arg(it.key());
        for (auto property = it->cbegin(); property != it->cend(); ++property)
            xml += u"<property name=\"%1\" type=\"%2\" access=\"read\"/>"_s.arg(
                property.key(),
                QString::fromLatin1(QDBusMetaType::typeToSignature(property->metaType())));
        xml += u"</interface>"_s;
    }
    QStringList children;
    const auto prefix = path == u"/" ? path : path + u'/';
    for (const auto& other : objects.keys())
        if (other.startsWith(prefix)) children += other.mid(prefix.size()).section(u'/', 0, 0);
    children.removeDuplicates();
    for (const auto& child : children) xml += u"<node name=\"%1\"/>"_s.arg(child);
    return xml;
}

} // namespace quenthisar::dongle
