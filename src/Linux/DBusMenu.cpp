// SPDX-License-Identifier: MIT
#include "Linux/DBusMenu.h"

#include "Linux/MenuTitle.h"

#include <QDBusError>
#include <QGuiApplication>

#include <algorithm>
#include <utility>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

QVariantMap propertiesOf(const MenuItem& item) {
    if (item.isSeparator) return {{u"type"_s, u"separator"_s}};
    // An underscore would mark a mnemonic.
    QVariantMap result{{u"label"_s, menuTitle(item.title).replace(u'_', u"__"_s)},
                       {u"enabled"_s, item.isEnabled}};
    if (item.submenu) result[u"children-display"_s] = u"submenu"_s;
    if (item.state) {
        result[u"toggle-type"_s] = u"checkmark"_s;
        result[u"toggle-state"_s] = int{*item.state};
    }
    if (!item.keyEquivalent.empty()) {
        const QStringList key{u"Control"_s, QString::fromStdString(item.keyEquivalent)};
        result[u"shortcut"_s] = QVariant::fromValue(QList<QStringList>{key});
    }
    return result;
}

/// No names stand for all of them.
QVariantMap chosen(const QVariantMap& properties, const QStringList& names) {
    if (names.isEmpty()) return properties;
    QVariantMap result;
    for (const auto& name : names)
        if (const auto found = properties.find(name); found != properties.end())
            result.insert(name, *found);
    return result;
}

const QVariantMap rootProperties{{u"children-display"_s, u"submenu"_s}};

} // namespace

DBusMenu::DBusMenu(MenuDelegate menuDelegate) : delegate(std::move(menuDelegate)) {
    registerDBusMenuTypes();
}

QString DBusMenu::textDirection() {
    return QGuiApplication::isRightToLeft() ? u"rtl"_s : u"ltr"_s;
}

bool DBusMenu::update() {
    Menu next;
    delegate.menuNeedsUpdate(next);
    if (next == shown) return false;
    shown = std::move(next);
    const auto before = std::exchange(entries, {});
    enter(shown, rootId);

    QList<DBusMenuItem> changed;
    for (const auto& entry : entries) {
        const auto old = std::ranges::find(before, entry.id, &Entry::id);
        if (old != before.end() && old->properties != entry.properties)
            changed.append({entry.id, entry.properties});
    }
    if (!changed.isEmpty()) Q_EMIT ItemsPropertiesUpdated(changed, {});
    if (!std::ranges::equal(before, entries, {}, &Entry::id, &Entry::id))
        Q_EMIT LayoutUpdated(++revision, rootId);
    return true;
}

int DBusMenu::number(const Meaning& meaning) {
    return ids.try_emplace(meaning, static_cast<int>(ids.size()) + 1).first->second;
}

void DBusMenu::enter(const Menu& menu, int parent) {
    std::map<std::pair<MenuAction, std::string>, int> alike;
    for (const auto& item : menu) {
        const auto object = item.representedObject.value_or("");
        const int place = alike[{item.action, object}]++;
        const int id = number({parent, item.action, object, place});
        entries.push_back({id, parent, item, propertiesOf(item)});
        if (item.submenu) enter(*item.submenu, id);
    }
}

const DBusMenu::Entry* DBusMenu::find(int id) const {
    const auto found = std::ranges::find(entries, id, &Entry::id);
    return found != entries.end() ? &*found : nullptr;
}

DBusMenuLayout DBusMenu::layoutOf(int id, const QVariantMap& properties, int depth,
                                  const QStringList& names) const {
    DBusMenuLayout layout{id, chosen(properties, names), {}};
    if (depth == 0) return layout;
    const int below = depth > 0 ? depth - 1 : depth; // a negative one stands for all
    for (const auto& entry : entries)
        if (entry.parent == id)
            layout.children.append(layoutOf(entry.id, entry.properties, below, names));
    return layout;
}

uint DBusMenu::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                         DBusMenuLayout& layout) {
    if (entries.empty()) update();
    const auto* parent = find(parentId);
    if (parentId != rootId && !parent) {
        sendErrorReply(QDBusError::InvalidArgs, u"There is no such item"_s);
        return 0;
    }
    layout = layoutOf(parentId, parent ? parent->properties : rootProperties, recursionDepth,
                      propertyNames);
    return revision;
}

QList<DBusMenuItem> DBusMenu::GetGroupProperties(const QList<int>& wanted,
                                                 const QStringList& propertyNames) {
    if (entries.empty()) update();
    QList<DBusMenuItem> result;
    if (wanted.isEmpty() || wanted.contains(rootId))
        result.append({rootId, chosen(rootProperties, propertyNames)});
    for (const auto& entry : entries)
        if (wanted.isEmpty() || wanted.contains(entry.id))
            result.append({entry.id, chosen(entry.properties, propertyNames)});
    return result;
}

QDBusVariant DBusMenu::GetProperty(int id, const QString& name) {
    const auto* entry = find(id);
    const auto properties = entry          ? entry->properties
                            : id == rootId ? rootProperties
                                           : QVariantMap{};
    if (const auto found = properties.find(name); found != properties.end())
        return QDBusVariant(*found);
    sendErrorReply(QDBusError::InvalidArgs, u"There is no such item or property"_s);
    return {};
}

void DBusMenu::Event(int id, const QString& eventId, const QDBusVariant& /*data*/,
                     uint /*timestamp*/) {
    happened(id, eventId);
}

QList<int> DBusMenu::EventGroup(const QList<DBusMenuEvent>& events) {
    QList<int> unknown;
    for (const auto& event : events) {
        if (!isKnown(event.id)) unknown.append(event.id);
        happened(event.id, event.type);
    }
    return unknown;
}

bool DBusMenu::AboutToShow(int /*id*/) {
    return update();
}

QList<int> DBusMenu::AboutToShowGroup(const QList<int>& wanted, QList<int>& idErrors) {
    const bool hasChanged = update();
    QList<int> updatesNeeded;
    for (const int id : wanted) {
        if (!isKnown(id))
            idErrors.append(id);
        else if (hasChanged)
            updatesNeeded.append(id);
    }
    return updatesNeeded;
}

void DBusMenu::happened(int id, const QString& event) {
    const auto* entry = find(id);
    if (event != "clicked"_L1 || !entry || !entry->item.isEnabled ||
        entry->item.action == MenuAction::none)
        return;
    // The host gets its answer first: what is chosen may ask the host for something.
    const auto act = [this, id, item = entry->item] {
        delegate.choose(item);
        update();
        // Some hosts have changed the mark by themselves.
        const auto* now = find(id);
        if (now && now->item.state) Q_EMIT ItemsPropertiesUpdated({{id, now->properties}}, {});
    };
    QMetaObject::invokeMethod(this, act, Qt::QueuedConnection);
}

} // namespace quenthisar
