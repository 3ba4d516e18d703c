// SPDX-License-Identifier: MIT
#pragma once

#include "ObjectTree.h"

#include <QDBusServiceWatcher>
#include <QObject>

#include <functional>
#include <vector>

namespace quenthisar::dongle {

/// The programs that answer when a device wants to pair (AgentManager1). Main thread.
class Agents final : public QObject {
public:
    explicit Agents(ObjectTree& tree);

    bool call(const QDBusMessage& message);

    bool isEmpty() const { return agents.empty(); }
    /// Asks the default agent, else the one registered first; `answer` is called later, once.
    void requestAuthorization(const QString& device, std::function<void(bool granted)> answer);

private:
    struct Agent {
        QString owner, path;
    };

    void forget(const QString& owner);

    ObjectTree& tree;
    QDBusServiceWatcher watcher;
    std::vector<Agent> agents; // the default one first
};

} // namespace quenthisar::dongle
