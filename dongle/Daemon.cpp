// SPDX-License-Identifier: MIT
#include "Daemon.h"

#include "Bluez.h"
#include "Journal.h"
#include "Later.h"

#include <QDBusError>

namespace quenthisar::dongle {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// The adapter comes after the name, and its power after the adapter.
constexpr auto adapterTime = 30ms;
constexpr auto powerTime = 30ms;
const QString journalName = u"daemon"_s;

QString connectionName(int start) {
    return u"bluez-%1"_s.arg(start);
}

} // namespace

Daemon::Daemon(Options itsOptions, const Dongles& theDongles)
    : options(itsOptions), dongles(theDongles) {}

Daemon::~Daemon() {
    kill();
}

// Each start is a connection of its own: a daemon that comes back has another unique name.
bool Daemon::start() {
    if (isRunning()) return true;
    const auto name = connectionName(++starts);
    {
        auto bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
        tree = std::make_unique<ObjectTree>(bus);
        tree->setDenied(!access);
        tree->onCall([this](const QDBusMessage& message) { return call(message); });
        const bool served =
            bus.registerVirtualObject(u"/"_s, tree.get(), QDBusConnection::SubPath) &&
            bus.registerService(u"org.bluez"_s);
        if (!served) {
            journal(journalName, {}, u"not started: "_s + bus.lastError().message());
            tree->mute();
            disconnect();
            return false;
        }
    }
    journal(journalName, {}, u"started"_s);
    agents = std::make_unique<Agents>(*tree);
    tree->add(u"/org/bluez"_s, {{bluez::agentManager, {}}});
    if (options.adapter) later(adapterTime, tree.get(), [this] { addAdapter(); });
    return true;
}

void Daemon::addAdapter() {
    if (radio || !options.adapter) return;
    // At the first start the radio is still off.
    radio = std::make_unique<Adapter>(*tree, *agents, options.delays, dongles,
                                      options.powered && starts > 1);
    later(powerTime, radio.get(), [this] { radio->setPowered(options.powered); });
}

void Daemon::setAdapter(bool present) {
    options.adapter = present;
    if (!isRunning()) return;
    if (present)
        addAdapter();
    else
        radio.reset();
}

void Daemon::setAccess(bool granted) {
    access = granted;
    if (tree) tree->setDenied(!granted);
}

void Daemon::setPowered(bool on) {
    options.powered = on;
    if (radio) radio->setPowered(on);
}

void Daemon::stop() {
    if (!isRunning()) return;
    radio.reset();
    tree->removeAll();
    // A round trip: what was said before has left.
    tree->bus().call(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/"_s,
                                                    u"org.freedesktop.DBus.Peer"_s, u"Ping"_s));
    disconnect();
}

void Daemon::kill() {
    if (!isRunning()) return;
    tree->mute();
    disconnect();
}

void Daemon::disconnect() {
    radio.reset();
    agents.reset();
    tree.reset();
    QDBusConnection::disconnectFromBus(connectionName(starts));
    journal(journalName, {}, u"gone"_s);
}

bool Daemon::call(const QDBusMessage& message) {
    if (message.interface() == bluez::agentManager) return agents->call(message);
    return radio && radio->call(message);
}

} // namespace quenthisar::dongle
