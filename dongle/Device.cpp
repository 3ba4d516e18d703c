// SPDX-License-Identifier: MIT
#include "Device.h"

#include "Bluez.h"
#include "Later.h"

#include <utility>

namespace quenthisar::dongle {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto temporaryTime = 30s;
constexpr auto connectTime = 80ms;
constexpr auto firstResolveTime = 250ms;
// The daemon keeps the attributes that it read once.
constexpr auto laterResolveTime = 100ms;
constexpr auto refusalTime = 300ms;

QString servicePath(const QString& device) {
    return device + u"/service0007"_s;
}

QString inputPath(const QString& device) {
    return servicePath(device) + u"/char0008"_s;
}

QVariantMap serviceProperties(const QString& device, const QString& uuid) {
    return {{u"UUID"_s, uuid},
            {u"Device"_s, QVariant::fromValue(QDBusObjectPath{device})},
            {u"Primary"_s, true},
            {u"Includes"_s, QVariant::fromValue(QList<QDBusObjectPath>{})}};
}

} // namespace

QString Device::pathOf(const QString& adapter, const Dongle& dongle) {
    return adapter + u"/dev_"_s + dongle.address().replace(u':', u'_');
}

Device::Device(Context itsContext, const QString& adapter, Dongle& dongle,
               std::optional<short> rssi)
    : context(std::move(itsContext)), itsDongle(dongle), adapterPath(adapter),
      ownPath(pathOf(adapter, dongle)),
      input(context.tree, context.agents, dongle, inputPath(ownPath),
            {.adapter = adapter,
             .path = ownPath,
             .dropLink = [this](const QString& reason) { loseLink(reason); },
             .vanish = [this] { context.removeLater(ownPath); },
             .setPaired =
                 [this] {
                     itsDongle.pairedWith.insert(adapterPath);
                     set(u"Paired"_s, true);
                     set(u"Bonded"_s, true);
                 }}) {
    const bool paired = dongle.pairedWith.contains(adapter);
    const auto alias = dongle.address().replace(u':', u'-');
    QVariantMap properties{{u"Address"_s, dongle.address()},
                           {u"AddressType"_s, u"random"_s},
                           {u"Alias"_s, dongle.name.isEmpty() ? alias : dongle.name},
                           {u"Paired"_s, paired},
                           {u"Bonded"_s, paired},
                           {u"Trusted"_s, false},
                           {u"Blocked"_s, false},
                           {u"LegacyPairing"_s, false},
                           {u"Connected"_s, false},
                           {u"ServicesResolved"_s, false},
                           {u"UUIDs"_s, QStringList{bluez::dongleService}},
                           {u"Adapter"_s, QVariant::fromValue(QDBusObjectPath{adapter})}};
    if (!dongle.name.isEmpty()) properties.insert(u"Name"_s, dongle.name);
    if (rssi) properties.insert(u"RSSI"_s, QVariant::fromValue(*rssi));
    context.tree.add(ownPath, {{bluez::device, properties}});

    temporary.setSingleShot(true);
    temporary.callOnTimeout(this, [this] { context.removeLater(ownPath); });
    if (!dongle.rememberedBy.contains(adapter)) temporary.start(temporaryTime);
    failing.setSingleShot(true);
    failing.callOnTimeout(this, [this] { failConnect(u"le-connection-abort-by-local"_s); });
}

Device::~Device() {
    if (!connected) return;
    itsDongle.linked = false;
    input.setReading(false);
    itsDongle.linkLost(u"removed"_s);
}

void Device::set(const QString& name, const QVariant& value) {
    context.tree.set(ownPath, bluez::device, name, value);
}

void Device::later(std::chrono::milliseconds delay, std::function<void()> action) {
    dongle::later(delay, this, [this, number = attempt, action = std::move(action)] {
        if (number == attempt) action();
    });
}

void Device::showName() {
    if (itsDongle.name.isEmpty()) return;
    set(u"Name"_s, itsDongle.name);
    set(u"Alias"_s, itsDongle.name);
}

void Device::seen(short rssi) {
    if (temporary.isActive()) temporary.start(temporaryTime);
    showName();
    set(u"RSSI"_s, QVariant::fromValue(rssi));
    context.tree.flush();
}

void Device::scanEnded() {
    set(u"RSSI"_s, {});
}

bool Device::call(const QDBusMessage& message, bool powered) {
    if (message.path() == inputPath(ownPath) && message.interface() == bluez::characteristic)
        return context.tree.contains(message.path()) && input.call(message, connected);
    if (message.path() != ownPath || message.interface() != bluez::device) return false;
    if (message.member() == u"Connect")
        connectCall(message, powered);
    else if (message.member() == u"Disconnect")
        disconnectCall(message);
    else
        return false;
    return true;
}

void Device::connectCall(const QDBusMessage& message, bool powered) {
    auto& tree = context.tree;
    if (!powered) {
        tree.fail(message, bluez::notReady, u"br-connection-adapter-not-powered"_s);
    } else if (connected) {
        tree.reply(message);
    } else if (pendingConnect) {
        tree.fail(message, bluez::inProgress, u"In Progress"_s);
    } else {
        pendingConnect = message;
        ++attempt;
        temporary.stop();
        itsDongle.rememberedBy.insert(adapterPath);
        itsDongle.report(u"connecting"_s);
        cameIntoRange();
        if (itsDongle.faults.connect == ConnectFault::refuse)
            failing.start(refusalTime);
        else if (itsDongle.faults.connect != ConnectFault::silent)
            failing.start(context.delays.failedConnect);
    }
}

void Device::cameIntoRange() {
    const auto fault = itsDongle.faults.connect;
    if (!pendingConnect || !itsDongle.faults.inRange || fault == ConnectFault::refuse ||
        fault == ConnectFault::silent)
        return;
    later(connectTime, [this] {
        if (itsDongle.faults.inRange && !itsDongle.linked) establish();
    });
}

void Device::failConnect(const QString& text) {
    const auto call = std::exchange(pendingConnect, std::nullopt);
    if (!call) return;
    ++attempt;
    failing.stop();
    itsDongle.report(u"connecting failed"_s);
    context.tree.fail(*call, bluez::failed, text);
}

void Device::losePower() {
    failConnect(u"le-connection-abort-by-local"_s);
    loseLink(u"powered off"_s);
}

void Device::establish() {
    const auto call = std::exchange(pendingConnect, std::nullopt);
    if (!call) return;
    failing.stop();
    connected = true;
    itsDongle.linked = true;
    ++itsDongle.connections;
    itsDongle.report(u"connected"_s);
    // The real daemon is silent where the socket tells it of the link before the kernel does.
    if (itsDongle.faults.connect == ConnectFault::unannounced)
        context.tree.setSilently(ownPath, bluez::device, u"Connected"_s, true);
    else
        set(u"Connected"_s, true);
    context.tree.reply(*call);
    if (itsDongle.faults.connect == ConnectFault::unresolved) return;
    later(itsDongle.connections == 1 ? firstResolveTime : laterResolveTime, [this] { resolve(); });
}

void Device::resolve() {
    // A real daemon shows the objects after the signal in some connections and before it in most.
    const auto order = itsDongle.faults.objects;
    const bool after = order == ObjectOrder::after ||
                       (order == ObjectOrder::mixed && itsDongle.connections % 4 == 2);
    if (!after) addObjects();
    showName();
    set(u"UUIDs"_s, QStringList{bluez::gapService, bluez::gattService, bluez::dongleService});
    set(u"ServicesResolved"_s, true);
    itsDongle.report(u"resolved"_s);
    context.tree.flush();
    if (after) addObjects();
}

void Device::addObjects() {
    auto& tree = context.tree;
    const auto gatt = ownPath + u"/service0006"_s;
    if (!tree.contains(gatt))
        tree.add(gatt, {{bluez::service, serviceProperties(ownPath, bluez::gattService)}});
    const auto service = servicePath(ownPath);
    if (itsDongle.faults.connect == ConnectFault::noService) {
        tree.remove(service);
    } else if (!tree.contains(service)) {
        tree.add(service, {{bluez::service, serviceProperties(ownPath, bluez::dongleService)}});
        tree.add(inputPath(ownPath),
                 {{bluez::characteristic, Characteristic::properties(service)}});
    }
}

void Device::disconnectCall(const QDBusMessage& message) {
    ++attempt;
    failing.stop();
    if (const auto call = std::exchange(pendingConnect, std::nullopt)) {
        itsDongle.report(u"connecting canceled"_s);
        context.tree.fail(*call, bluez::failed, u"br-connection-canceled"_s);
    }
    if (!connected) {
        context.tree.reply(message);
        return;
    }
    pendingDisconnects.push_back(message);
    if (pendingDisconnects.size() > 1) return;
    later(context.delays.disconnect, [this] {
        input.drain();
        loseLink(u"host"_s);
    });
}

// A link that the host ends is signalled in two steps with the replies between them, one that is
// lost in one step.
void Device::loseLink(const QString& reason) {
    if (!connected) return;
    ++attempt;
    connected = false;
    itsDongle.linked = false;
    // Nothing may be pressed after the release.
    input.setReading(false);
    itsDongle.linkLost(reason);
    set(u"ServicesResolved"_s, false);
    for (const auto& call : std::exchange(pendingDisconnects, {})) context.tree.reply(call);
    set(u"Connected"_s, false);
    context.tree.flush();
    input.linkLost();
}

} // namespace quenthisar::dongle
