// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/BusPeer.h"

#include <functional>

namespace quenthisar {

/// Looks for something that shows status notifier items (org.kde.StatusNotifierWatcher), and tells
/// it of ours whenever it comes. Main thread.
class StatusNotifierHosts final : public QObject {
    Q_OBJECT

public:
    /// `item` is the item's name on the bus. `changed` is called later, whenever `isThere` has
    /// changed.
    StatusNotifierHosts(const QDBusConnection& bus, const QString& item,
                        std::function<void()> changed);

    /// Whether a host shows items now.
    bool isThere() const { return there; }
    /// Whether there is a watcher that does not say, and nobody should wait for.
    bool isUnknown() const { return unknown; }

private:
    Q_SLOT void hostChanged(const QDBusMessage& signal);

    void watcherChanged();
    void ask();
    void set(bool isThere);

    const QString item;
    std::function<void()> changed;
    bool there = false, unknown = false;
    BusPeer watcher;
};

} // namespace quenthisar
