// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QStringList>
#include <QVariantMap>

namespace quenthisar {

// What the interface com.canonical.dbusmenu sends, in the order of the bus.

struct DBusMenuItem { // (ia{sv})
    int id = 0;
    QVariantMap properties;
};
struct DBusMenuRemoval { // (ias)
    int id = 0;
    QStringList properties;
};
struct DBusMenuLayout { // (ia{sv}av)
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayout> children;
};
struct DBusMenuEvent { // (isvu)
    int id = 0;
    QString type;
    QDBusVariant data;
    uint timestamp = 0;
};

/// Called before any of them is sent or received; more than once does no harm.
void registerDBusMenuTypes();

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItem& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuRemoval& removal);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItem& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuRemoval& removal);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event);

} // namespace quenthisar
