// SPDX-License-Identifier: MIT
#include "support/StatusPanel.h"

#include "support/RunUntil.h"

#include <QDBusPendingCall>
#include <QDBusVariant>

#include <algorithm>
#include <utility>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String watcher{"org.kde.StatusNotifierWatcher"};
constexpr QLatin1String watcherPath{"/StatusNotifierWatcher"};
constexpr QLatin1String itemPath{"/StatusNotifierItem"};
constexpr QLatin1String itemInterface{"org.kde.StatusNotifierItem"};
constexpr QLatin1String menuInterface{"com.canonical.dbusmenu"};
constexpr QLatin1String connectionName{"status-panel"};

PanelItem itemIn(const QDBusArgument& argument) {
    PanelItem item;
    argument.beginStructure();
    argument >> item.id >> item.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        item.children.push_back(itemIn(child.variant().value<QDBusArgument>()));
    }
    argument.endArray();
    argument.endStructure();
    return item;
}

} // namespace

PanelItem PanelItem::operator[](const QString& wanted) const {
    const auto found = std::ranges::find(children, wanted, &PanelItem::label);
    return found != children.end() ? *found : PanelItem{};
}

StatusPanel::StatusPanel(const QString& busAddress)
    : bus(QDBusConnection::connectToBus(busAddress, connectionName)) {
    bus.registerVirtualObject(watcherPath, this);
    for (const auto& signal : {u"ItemsPropertiesUpdated"_s, u"LayoutUpdated"_s})
        bus.connect({}, {}, menuInterface, signal, this, SLOT(menuHasChanged()));
    bus.registerService(watcher);
}

StatusPanel::~StatusPanel() {
    QDBusConnection::disconnectFromBus(connectionName);
}

bool StatusPanel::waitForItem() const {
    return test::runUntil([this] { return !items.isEmpty(); });
}

std::optional<QDBusMessage> StatusPanel::call(const QString& path, const QString& interface,
                                              const QString& method,
                                              const QVariantList& arguments) {
    if (items.isEmpty()) return std::nullopt;
    auto message = QDBusMessage::createMethodCall(items.first(), path, interface, method);
    message.setArguments(arguments);
    // The item may live in this very thread.
    const auto pending = bus.asyncCall(message);
    test::runUntil([&] { return pending.isFinished(); });
    if (!pending.isFinished() || pending.isError()) return std::nullopt;
    return pending.reply();
}

QVariant StatusPanel::itemProperty(const QString& name) {
    const auto reply = call(itemPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s,
                            {QString(itemInterface), name});
    return reply ? reply->arguments().at(0).value<QDBusVariant>().variant() : QVariant{};
}

PanelItem StatusPanel::menu(int parent) {
    const auto path = itemProperty(u"Menu"_s).value<QDBusObjectPath>().path();
    const auto reply = call(path, menuInterface, u"GetLayout"_s, {parent, -1, QStringList{}});
    if (!reply) return {};
    return itemIn(reply->arguments().at(1).value<QDBusArgument>());
}

bool StatusPanel::waitForMenu(const std::function<bool(const PanelItem&)>& wanted) {
    return test::runUntil([&] {
        if (std::exchange(isStale, false)) shown = menu();
        return wanted(shown);
    });
}

void StatusPanel::click(int id) {
    const auto path = itemProperty(u"Menu"_s).value<QDBusObjectPath>().path();
    call(path, menuInterface, u"Event"_s,
         {id, u"clicked"_s, QVariant::fromValue(QDBusVariant(u""_s)), 0U});
}

QString StatusPanel::introspect(const QString& /*path*/) const {
    return {};
}

bool StatusPanel::handleMessage(const QDBusMessage& request, const QDBusConnection& connection) {
    if (request.member() == "RegisterStatusNotifierItem"_L1) {
        items.append(request.arguments().at(0).toString());
        return connection.send(request.createReply());
    }
    if (request.member() == "Get"_L1)
        return connection.send(
            request.createReply(QVariant::fromValue(QDBusVariant(QVariant(true)))));
    return false;
}

} // namespace quenthisar
