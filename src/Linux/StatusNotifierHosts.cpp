// SPDX-License-Identifier: MIT
#include "Linux/StatusNotifierHosts.h"

#include <QDBusVariant>

#include <utility>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String watcherName{"org.kde.StatusNotifierWatcher"}; // its interface's name, too
constexpr QLatin1String watcherPath{"/StatusNotifierWatcher"};

} // namespace

StatusNotifierHosts::StatusNotifierHosts(const QDBusConnection& bus, const QString& itemName,
                                         std::function<void()> onChange)
    : item(itemName), changed(std::move(onChange)),
      watcher(bus, watcherName, [this] { watcherChanged(); }) {
    for (const auto& signal :
         {u"StatusNotifierHostRegistered"_s, u"StatusNotifierHostUnregistered"_s})
        watcher.subscribe(watcherPath, watcherName, signal, this, SLOT(hostChanged(QDBusMessage)));
}

void StatusNotifierHosts::watcherChanged() {
    unknown = watcher.isThere();
    if (!watcher.isThere()) return set(false);
    // Whether or not it has a host yet: one that comes later finds the item there.
    watcher.call(watcherPath, watcherName, u"RegisterStatusNotifierItem"_s, {item},
                 [](const QDBusMessage&) {});
    ask();
}

void StatusNotifierHosts::hostChanged(const QDBusMessage& signal) {
    if (watcher.sent(signal)) ask();
}

void StatusNotifierHosts::ask() {
    watcher.get(watcherPath, watcherName, u"IsStatusNotifierHostRegistered"_s,
                [this](const QDBusMessage& reply) {
                    unknown = reply.type() != QDBusMessage::ReplyMessage;
                    set(reply.type() == QDBusMessage::ReplyMessage && reply.signature() == "v"_L1 &&
                        reply.arguments().at(0).value<QDBusVariant>().variant().toBool());
                });
}

void StatusNotifierHosts::set(bool isThere) {
    if (std::exchange(there, isThere) != isThere) changed();
}

} // namespace quenthisar
