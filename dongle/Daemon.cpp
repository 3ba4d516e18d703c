// SPDX-License-Identifier: MIT
#include "Daemon.h"

#include "Bluez.h"
#include "Journal.h"
#include "Later.h"

#include <QDBusError>

#include <algorithm>

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
    : delays(itsOptions.delays), dongles(theDongles) {
    auto& radio = radios[u"hci0"_s];
    radio.present = itsOptions.adapter;
    radio.powered = itsOptions.powered;
}

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
    for (const auto& [adapter, radio] : radios)
        later(adapterTime, tree.get(), [this, adapter = adapter] { addAdapter(adapter); });
    return true;
}

void Daemon::addAdapter(const QString& name) {
    auto& radio = radios[name];
    if (radio.adapter || !radio.present) return;
    // At the first start the radio is still off.
    const bool on = radio.powered && !radio.blocked && starts > 1;
    radio.adapter = std::make_unique<Adapter>(*tree, *agents, delays, dongles, name, on);
    radio.adapter->setBlocked(radio.blocked);
    later(powerTime, radio.adapter.get(), [&radio] { radio.adapter->setPowered(radio.powered); });
}

void Daemon::setAdapter(const QString& adapter, bool present) {
    auto& radio = radios[adapter];
    radio.present = present;
    if (!isRunning()) return;
    if (present)
        addAdapter(adapter);
    else
        radio.adapter.reset();
}

void Daemon::setPowered(const QString& adapter, bool on) {
    auto& radio = radios[adapter];
    radio.powered = on;
    if (radio.adapter) radio.adapter->setPowered(on);
}

// Unblocked, it is as it was.
void Daemon::setBlocked(const QString& adapter, bool on) {
    auto& radio = radios[adapter];
    radio.blocked = on;
    if (!radio.adapter) return;
    radio.adapter->setBlocked(on);
    if (!on) radio.adapter->setPowered(radio.powered);
}

std::vector<Adapter*> Daemon::adapters() const {
    std::vector<Adapter*> all;
    for (const auto& [name, radio] : radios)
        if (radio.adapter) all.push_back(radio.adapter.get());
    return all;
}

Device* Daemon::deviceOf(const Dongle& dongle) const {
    Device* first = nullptr;
    for (const auto* adapter : adapters()) {
        auto* device = adapter->deviceOf(dongle);
        if (device == nullptr) continue;
        if (device->isConnected()) return device;
        if (first == nullptr) first = device;
    }
    return first;
}

void Daemon::removeAdapters() {
    for (auto& [name, radio] : radios) radio.adapter.reset();
}

void Daemon::setAccess(bool granted) {
    access = granted;
    if (tree) tree->setDenied(!granted);
}

void Daemon::stop() {
    if (!isRunning()) return;
    removeAdapters();
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
    removeAdapters();
    agents.reset();
    tree.reset();
    QDBusConnection::disconnectFromBus(connectionName(starts));
    journal(journalName, {}, u"gone"_s);
}

bool Daemon::call(const QDBusMessage& message) {
    if (message.interface() == bluez::agentManager) return agents->call(message);
    const auto all = adapters();
    return std::ranges::any_of(all, [&](Adapter* adapter) { return adapter->call(message); });
}

} // namespace quenthisar::dongle
