// SPDX-License-Identifier: MIT
#include "Linux/BluezDiscovery.h"

#include <chrono>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

// An adapter that has just been powered may refuse for a moment.
constexpr std::chrono::seconds askAgain{2};

} // namespace

void BluezDiscovery::start(const QString& adapterPath) {
    if (adapter == adapterPath) return;
    adapter = adapterPath;
    ++wish;
    setFilter();
}

void BluezDiscovery::forget() {
    adapter.clear();
    ++wish;
}

void BluezDiscovery::setFilter() {
    // No service here: the filters of all clients merge anyway, and one release of the daemon
    // crashes on one.
    const QVariantMap filter{{u"Transport"_s, u"le"_s}};
    daemon.call(adapter, Bluez::adapter, u"SetDiscoveryFilter"_s, {filter},
                BluezDaemon::Limit::usual,
                guard.bind([this, mine = wish](const QDBusMessage& reply) {
                    if (mine != wish) return;
                    if (reply.type() == QDBusMessage::ErrorMessage)
                        again(reply);
                    else
                        startDiscovery();
                }));
}

void BluezDiscovery::startDiscovery() {
    daemon.call(adapter, Bluez::adapter, u"StartDiscovery"_s, {}, BluezDaemon::Limit::usual,
                guard.bind([this, mine = wish](const QDBusMessage& reply) {
                    if (mine != wish || reply.type() != QDBusMessage::ErrorMessage) return;
                    again(reply);
                }));
}

void BluezDiscovery::again(const QDBusMessage& refusal) {
    // Either it already discovers for us, or the controller is still busy with what a killed daemon
    // has asked of it, and nothing comes of our wish.
    const bool mayHaveIt = refusal.errorName() == "org.bluez.Error.InProgress"_L1;
    daemon.queue().after(askAgain, guard.bind([this, mayHaveIt, mine = wish] {
        if (mine != wish) return;
        if (mayHaveIt)
            stopDiscovery();
        else
            setFilter();
    }));
}

void BluezDiscovery::stopDiscovery() {
    daemon.call(adapter, Bluez::adapter, u"StopDiscovery"_s, {}, BluezDaemon::Limit::usual,
                guard.bind([this, mine = wish](const QDBusMessage&) {
                    if (mine == wish) setFilter();
                }));
}

} // namespace quenthisar
