// SPDX-License-Identifier: MIT
#include "Adapter.h"

#include "Bluez.h"
#include "Journal.h"
#include "Later.h"

namespace quenthisar::dongle {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto scanStart = 10ms;
constexpr auto firstAdvertisement = 100ms;
constexpr auto advertisementInterval = 1s;

QString addressOf(const QString& name) {
    const auto number = QStringView{name}.mid(3).toUInt() & 0xFF;
    return u"00:AA:01:00:00:%1"_s.arg(number, 2, 16, QChar{u'0'}).toUpper();
}

} // namespace

Adapter::Adapter(ObjectTree& objects, Agents& theAgents, const Delays& itsDelays,
                 const Dongles& theDongles, const QString& itsName, bool isOn)
    : tree(objects), agents(theAgents), delays(itsDelays), dongles(theDongles), name(itsName),
      powered(isOn) {
    tree.add(path, {{bluez::adapter,
                     {{u"Address"_s, addressOf(name)},
                      {u"AddressType"_s, u"public"_s},
                      {u"Name"_s, u"host"_s},
                      {u"Alias"_s, u"host"_s},
                      {u"Class"_s, 0U},
                      {u"Powered"_s, powered},
                      {u"Discoverable"_s, false},
                      {u"Pairable"_s, true},
                      {u"Discovering"_s, false},
                      {u"UUIDs"_s, QStringList{bluez::gapService, bluez::gattService}},
                      {u"Roles"_s, QStringList{u"central"_s, u"peripheral"_s}}}}});
    for (const auto& dongle : dongles)
        if (dongle->rememberedBy.contains(path)) create(*dongle, std::nullopt);
    journal(name, {}, u"adapter added"_s);
    watcher.setConnection(tree.bus());
    watcher.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&watcher, &QDBusServiceWatcher::serviceUnregistered, this, &Adapter::clientGone);
    advertising.callOnTimeout(this, [this] { advertise(); });
}

Adapter::~Adapter() {
    devices.clear();
    tree.remove(path);
    journal(name, {}, u"adapter removed"_s);
}

Device& Adapter::create(Dongle& dongle, std::optional<short> strength) {
    auto device = std::make_unique<Device>(
        Device::Context{
            tree, agents, delays,
            [this](const QString& gone) { later(0ms, this, [this, gone] { remove(gone); }); }},
        path, dongle, strength);
    return *(devices[device->path()] = std::move(device));
}

Device* Adapter::deviceOf(const Dongle& dongle) const {
    const auto it = devices.find(Device::pathOf(path, dongle));
    return it != devices.end() ? it->second.get() : nullptr;
}

bool Adapter::call(const QDBusMessage& message) {
    if (message.path() != path) {
        for (const auto& [devicePath, device] : devices)
            if (message.path().startsWith(devicePath) && device->call(message, powered))
                return true;
        return false;
    }
    const auto arguments = message.arguments();
    if (message.interface() == bluez::properties && arguments.value(1).toString() == u"Powered") {
        setPoweredCall(message);
        return true;
    }
    if (message.interface() != bluez::adapter) return false;
    static const QStringList methods{u"SetDiscoveryFilter"_s, u"StartDiscovery"_s,
                                     u"StopDiscovery"_s, u"RemoveDevice"_s};
    if (!methods.contains(message.member())) return false;
    if (!powered)
        tree.fail(message, bluez::notReady, u"Resource Not Ready"_s);
    else if (message.member() == u"SetDiscoveryFilter")
        tree.reply(message);
    else if (message.member() == u"StartDiscovery")
        startDiscovery(message);
    else if (message.member() == u"StopDiscovery")
        stopDiscovery(message);
    else
        removeDevice(message);
    return true;
}

void Adapter::setPoweredCall(const QDBusMessage& message) {
    const bool on = message.arguments().value(2).value<QDBusVariant>().variant().toBool();
    if (on && blocked) {
        tree.fail(message, bluez::blocked, u"Blocked through rfkill"_s);
        return;
    }
    setPowered(on);
    tree.reply(message);
}

void Adapter::setBlocked(bool on) {
    if (on) setPowered(false);
    blocked = on;
}

void Adapter::setPowered(bool on) {
    if (on == powered || blocked) return;
    powered = on;
    journal(name, {}, on ? u"powered on"_s : u"powered off"_s);
    if (!on) {
        for (const auto& [devicePath, device] : devices) device->losePower();
        clients.clear();
        setDiscovering(false);
    }
    tree.set(path, bluez::adapter, u"Powered"_s, on);
    tree.flush();
}

void Adapter::startDiscovery(const QDBusMessage& message) {
    if (!clients.insert(message.service()).second) {
        tree.fail(message, bluez::inProgress, u"Operation already in progress"_s);
    } else {
        watcher.addWatchedService(message.service());
        tree.reply(message);
        later(scanStart, this, [this] { setDiscovering(!clients.empty()); });
    }
}

void Adapter::stopDiscovery(const QDBusMessage& message) {
    if (!clients.contains(message.service())) {
        tree.fail(message, bluez::failed, u"No discovery started"_s);
        return;
    }
    clientGone(message.service());
    tree.reply(message);
}

void Adapter::clientGone(const QString& client) {
    watcher.removeWatchedService(client);
    clients.erase(client);
    setDiscovering(discovering && !clients.empty());
}

void Adapter::setDiscovering(bool on) {
    if (on == discovering) return;
    discovering = on;
    journal(name, {}, on ? u"discovering on"_s : u"discovering off"_s);
    tree.set(path, bluez::adapter, u"Discovering"_s, on);
    if (on) {
        later(firstAdvertisement, this, [this] { advertise(); });
        advertising.start(advertisementInterval);
    } else {
        advertising.stop();
        for (const auto& [devicePath, device] : devices) device->scanEnded();
    }
}

// The daemon signals a strength only when it has moved by more than 8.
void Adapter::advertise() {
    rssi = rssi == -52 ? -63 : -52;
    for (const auto& dongle : dongles) advertise(*dongle);
}

void Adapter::advertise(Dongle& dongle) {
    if (!discovering || !dongle.faults.inRange || dongle.linked) return;
    auto* device = deviceOf(dongle);
    if (device == nullptr) {
        create(dongle, rssi);
        dongle.report(u"discovered"_s);
    } else {
        device->seen(rssi);
        device->cameIntoRange();
    }
}

void Adapter::dongleChanged(const Dongle& dongle) {
    if (auto* device = deviceOf(dongle)) {
        if (!dongle.faults.inRange)
            device->loseLink(u"out of range"_s);
        else
            device->cameIntoRange();
    }
    later(firstAdvertisement, this, [this] { advertise(); });
}

void Adapter::removeDevice(const QDBusMessage& message) {
    const auto device = message.arguments().value(0).value<QDBusObjectPath>().path();
    const auto it = devices.find(device);
    if (it == devices.end()) {
        tree.fail(message, bluez::doesNotExist, u"Does Not Exist"_s);
        return;
    }
    it->second->loseLink(u"host"_s);
    remove(device);
    tree.reply(message);
}

void Adapter::remove(const QString& device) {
    const auto it = devices.find(device);
    if (it == devices.end()) return;
    it->second->dongle().rememberedBy.erase(path);
    it->second->dongle().pairedWith.erase(path);
    tree.remove(device);
    devices.erase(it);
}

} // namespace quenthisar::dongle
