// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/DBusMenuTypes.h"
#include "Platform/StatusItem.h"

#include <QDBusContext>
#include <QObject>

#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace quenthisar {

/// A menu that the desktop reads over the bus and shows by itself (com.canonical.dbusmenu). An item
/// keeps its number as long as it means the same, and no other item ever gets it: a host that is
/// behind the times can't choose what its user did not see. Main thread.
class DBusMenu final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version CONSTANT)
    Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)

public:
    explicit DBusMenu(MenuDelegate delegate);

    /// Asks for the menu anew, and tells hosts what has changed. False if nothing has.
    bool update();

    // The interface. An update may be asked for one submenu, but is always one of the whole.

    static uint version() { return 3; }
    static QString textDirection();
    static QString status() { return QStringLiteral("normal"); }
    static QStringList iconThemePath() { return {}; }

    Q_SLOT uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                          quenthisar::DBusMenuLayout& layout);
    Q_SLOT QList<quenthisar::DBusMenuItem> GetGroupProperties(const QList<int>& ids,
                                                              const QStringList& propertyNames);
    Q_SLOT QDBusVariant GetProperty(int id, const QString& name);
    Q_SLOT void Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp);
    Q_SLOT QList<int> EventGroup(const QList<quenthisar::DBusMenuEvent>& events);
    Q_SLOT bool AboutToShow(int id);
    Q_SLOT QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

    Q_SIGNAL void ItemsPropertiesUpdated(const QList<quenthisar::DBusMenuItem>& updated,
                                         const QList<quenthisar::DBusMenuRemoval>& removed);
    Q_SIGNAL void LayoutUpdated(uint revision, int parent);

private:
    struct Entry {
        int id = 0, parent = 0;
        MenuItem item;
        QVariantMap properties;
    };
    /// What an item is, whatever it shows: its parent, its action, what that acts on, and its place
    /// among those that are alike in all this.
    using Meaning = std::tuple<int, MenuAction, std::string, int>;

    int number(const Meaning& meaning);
    void enter(const Menu& menu, int parent);
    bool isKnown(int id) const { return id == rootId || find(id); }
    const Entry* find(int id) const;
    DBusMenuLayout layoutOf(int id, const QVariantMap& properties, int depth,
                            const QStringList& names) const;
    void happened(int id, const QString& event);

    static constexpr int rootId = 0;

    MenuDelegate delegate;
    Menu shown;
    std::vector<Entry> entries; // in the order in which they are shown, submenus behind their item
    std::map<Meaning, int> ids;
    uint revision = 1;
};

} // namespace quenthisar
