// SPDX-License-Identifier: MIT
#include "Agents.h"

#include "Bluez.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <algorithm>
#include <utility>

namespace quenthisar::dongle {

using namespace Qt::StringLiterals;

Agents::Agents(ObjectTree& objects) : tree(objects) {
    watcher.setConnection(tree.bus());
    watcher.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&watcher, &QDBusServiceWatcher::serviceUnregistered, this, &Agents::forget);
}

void Agents::forget(const QString& owner) {
    watcher.removeWatchedService(owner);
    std::erase_if(agents, [&](const Agent& agent) { return agent.owner == owner; });
}

bool Agents::call(const QDBusMessage& message) {
    const auto owner = message.service();
    const auto path = message.arguments().value(0).value<QDBusObjectPath>().path();
    const auto known = std::ranges::find(agents, owner, &Agent::owner);
    if (message.member() == u"RegisterAgent") {
        if (known != agents.end()) {
            tree.fail(message, bluez::alreadyExists, u"Already Exists"_s);
            return true;
        }
        agents.push_back({owner, path});
        watcher.addWatchedService(owner);
    } else if (known == agents.end()) {
        tree.fail(message, bluez::doesNotExist, u"Does Not Exist"_s);
        return true;
    } else if (message.member() == u"UnregisterAgent") {
        forget(owner);
    } else if (message.member() == u"RequestDefaultAgent") {
        std::rotate(agents.begin(), known, known + 1);
    } else {
        return false;
    }
    tree.reply(message);
    return true;
}

void Agents::requestAuthorization(const QString& device, std::function<void(bool granted)> answer) {
    if (agents.empty()) return;
    auto request = QDBusMessage::createMethodCall(agents.front().owner, agents.front().path,
                                                  bluez::agent, u"RequestAuthorization"_s);
    request << QVariant::fromValue(QDBusObjectPath{device});
    auto* pending = new QDBusPendingCallWatcher(tree.bus().asyncCall(request), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [pending, answer = std::move(answer)] {
                pending->deleteLater();
                answer(!pending->isError());
            });
}

} // namespace quenthisar::dongle
