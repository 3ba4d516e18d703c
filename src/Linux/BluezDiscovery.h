// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/BluezDaemon.h"
#include "Support/WeakGuard.h"

#include <QString>

namespace quenthisar {

/// This program's wish that one adapter looks for LE devices. The daemon discovers as long as one
/// client wishes so. Main thread.
class BluezDiscovery {
public:
    explicit BluezDiscovery(BluezDaemon& daemon) : daemon(daemon) {}

    /// Asks until the daemon grants it; nothing if this adapter already discovers for us.
    void start(const QString& adapterPath);
    /// The adapter's power went, and with it the daemon's memory of the wish.
    void forget();

private:
    void setFilter();
    void startDiscovery();
    void stopDiscovery();
    void again(const QDBusMessage& refusal);

    BluezDaemon& daemon;
    QString adapter;
    int wish = 0; // tells answers to this wish from those to earlier ones
    WeakGuard guard;
};

} // namespace quenthisar
