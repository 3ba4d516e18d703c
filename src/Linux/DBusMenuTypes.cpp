// SPDX-License-Identifier: MIT
#include "Linux/DBusMenuTypes.h"

#include <QDBusMetaType>

namespace quenthisar {

namespace {

template <class... Fields>
QDBusArgument& write(QDBusArgument& argument, const Fields&... fields) {
    argument.beginStructure();
    (argument << ... << fields);
    argument.endStructure();
    return argument;
}

template <class... Fields>
const QDBusArgument& read(const QDBusArgument& argument, Fields&... fields) {
    argument.beginStructure();
    (argument >> ... >> fields);
    argument.endStructure();
    return argument;
}

} // namespace

void registerDBusMenuTypes() {
    qDBusRegisterMetaType<QList<QStringList>>(); // the keys of an item
    qDBusRegisterMetaType<DBusMenuItem>();
    qDBusRegisterMetaType<QList<DBusMenuItem>>();
    qDBusRegisterMetaType<DBusMenuRemoval>();
    qDBusRegisterMetaType<QList<DBusMenuRemoval>>();
    qDBusRegisterMetaType<DBusMenuLayout>();
    qDBusRegisterMetaType<DBusMenuEvent>();
    qDBusRegisterMetaType<QList<DBusMenuEvent>>();
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItem& item) {
    return write(argument, item.id, item.properties);
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuRemoval& removal) {
    return write(argument, removal.id, removal.properties);
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayout& layout) {
    QList<QDBusVariant> children;
    for (const auto& child : layout.children)
        children.append(QDBusVariant(QVariant::fromValue(child)));
    return write(argument, layout.id, layout.properties, children);
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event) {
    return write(argument, event.id, event.type, event.data, event.timestamp);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItem& item) {
    return read(argument, item.id, item.properties);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuRemoval& removal) {
    return read(argument, removal.id, removal.properties);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayout& layout) {
    QList<QDBusVariant> children;
    read(argument, layout.id, layout.properties, children);
    layout.children.clear();
    for (const auto& child : children)
        layout.children.append(qdbus_cast<DBusMenuLayout>(child.variant()));
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event) {
    return read(argument, event.id, event.type, event.data, event.timestamp);
}

} // namespace quenthisar
