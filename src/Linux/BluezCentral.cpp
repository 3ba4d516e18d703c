// SPDX-License-Identifier: MIT
#include "Linux/BluezCentral.h"

#include "Linux/NameSpace.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QRegularExpression>
#include <QThread>

#include <algorithm>
#include <utility>
#include <vector>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String agentPath{"/com/vornack/quenthisar/agent"};

Uuid identifierOf(const QVariantMap& device) {
    return version5(device.value(u"Address"_s).toString().toUpper().toUtf8());
}

std::optional<std::string> nameOf(const QVariantMap& device) {
    const auto name = device.value(u"Name"_s).toString();
    if (!name.isEmpty()) return name.toStdString();
    // The daemon makes an alias out of the address where there is no name.
    auto alias = device.value(u"Alias"_s).toString();
    const auto asAddress = QString(alias).replace(u'-', u':').toUpper();
    if (alias.isEmpty() || asAddress == device.value(u"Address"_s).toString().toUpper())
        return std::nullopt;
    return alias.toStdString();
}

/// Whether there is something to tell the device by.
bool hasAddress(const QVariantMap& device) {
    static const QRegularExpression address{u"^[0-9A-Fa-f]{2}(:[0-9A-Fa-f]{2}){5}$"_s};
    const auto value = device.value(u"Address"_s);
    return value.typeId() == QMetaType::QString && address.match(value.toString()).hasMatch();
}

/// What doesn't advertise because it is connected is there too.
bool isOnTheAir(const QVariantMap& device) {
    return device.contains(u"RSSI"_s) || device.value(u"Connected"_s).toBool();
}

} // namespace

BluezCentral::BluezCentral(const Bus& bus)
    : daemon(bus, *this),
      agent(
          daemon.bus(), agentPath,
          [this](const QDBusMessage& call) { return daemon.isFromDaemon(call); },
          [this](const QString& path) {
              const auto peripheral = at(path);
              return peripheral && peripheral->awaitsAnswer();
          }),
      discovery(daemon) {
    currentState = derivedState();
}

void BluezCentral::setDelegate(CentralDelegate* next) {
    delegate = next;
    if (!next) return;
    daemon.queue().async(guard.bind([this, next] {
        if (delegate == next) delegate->didUpdateState();
    }));
}

// Daemon and adapters.

void BluezCentral::presenceChanged() {
    if (daemon.presence() == BluezDaemon::Presence::present) registerAgent();
    update();
}

void BluezCentral::registerAgent() {
    agent.serveOn(daemon.bus());
    // Refused, pairing is the desktop's business alone.
    daemon.call(u"/org/bluez"_s, u"org.bluez.AgentManager1"_s, u"RegisterAgent"_s,
                {QVariant::fromValue(QDBusObjectPath(agentPath)), u"NoInputNoOutput"_s},
                BluezDaemon::Limit::usual, [](const QDBusMessage&) {});
}

CentralState BluezCentral::derivedState() const {
    switch (daemon.presence()) {
    case BluezDaemon::Presence::unknown:
    case BluezDaemon::Presence::reading: return currentState;
    case BluezDaemon::Presence::absent: return CentralState::unsupported;
    case BluezDaemon::Presence::denied: return CentralState::unauthorized;
    case BluezDaemon::Presence::gone: return CentralState::resetting;
    case BluezDaemon::Presence::present: break;
    }
    if (!adapter.isEmpty()) return CentralState::poweredOn;
    return daemon.adapters().isEmpty() ? CentralState::unsupported : CentralState::poweredOff;
}

bool BluezCentral::isPowered(const QString& adapterPath) const {
    return daemon.adapters().value(adapterPath).value(u"Powered"_s).toBool();
}

QString BluezCentral::chosenAdapter() const {
    if (isPowered(adapter)) return adapter;
    const auto paths = daemon.adapters().keys(); // in order
    const auto first =
        std::ranges::find_if(paths, [this](const QString& path) { return isPowered(path); });
    return first != paths.end() ? *first : QString();
}

void BluezCentral::update() {
    if (const auto chosen = chosenAdapter(); chosen != adapter) {
        adapter = chosen;
        leaveAdapter();
        if (!adapter.isEmpty()) enterAdapter();
    }
    const auto next = derivedState();
    if (next == currentState) return;
    currentState = next;
    if (currentState != CentralState::poweredOn) scannedService.reset();
    if (delegate) delegate->didUpdateState();
}

void BluezCentral::leaveAdapter() {
    discovery.forget();
    // A delegate that hears of lost links may come back to this object.
    std::vector<BluezPeripheralPtr> all;
    for (const auto& [id, peripheral] : peripherals) all.push_back(peripheral);
    for (const auto& peripheral : all) {
        peripheral->sighting.vanished();
        peripheral->vanished();
    }
}

void BluezCentral::enterAdapter() {
    for (const auto& [path, device] : daemon.devices().asKeyValueRange()) {
        if (!isOnOurAdapter(device)) continue;
        if (const auto peripheral = known(device)) peripheral->appeared(path);
    }
    if (scannedService) beginScan();
}

// Discovery.

void BluezCentral::scanForPeripherals(const Uuid& service) {
    if (currentState != CentralState::poweredOn) return;
    scannedService = service;
    for (const auto& [id, peripheral] : peripherals) peripheral->sighting.scanStarted();
    daemon.queue().async(guard.bind([this] {
        if (scannedService && !adapter.isEmpty()) beginScan();
    }));
}

void BluezCentral::beginScan() {
    discovery.start(adapter);
    const auto devices = daemon.devices(); // a delegate may come back to this object
    for (auto device = devices.begin(); device != devices.end(); ++device) {
        if (isOnTheAir(*device)) sign(device.key(), *device);
    }
}

bool BluezCentral::isOnOurAdapter(const QVariantMap& device) const {
    return !adapter.isEmpty() &&
           device.value(u"Adapter"_s).value<QDBusObjectPath>().path() == adapter;
}

bool BluezCentral::offersService(const QVariantMap& device) const {
    const auto uuids = device.value(u"UUIDs"_s).toStringList();
    return scannedService && std::ranges::any_of(uuids, [this](const QString& text) {
               return Uuid::parse(text.toStdString()) == scannedService;
           });
}

BluezCentral::BluezPeripheralPtr BluezCentral::known(const QVariantMap& device) const {
    const auto found = peripherals.find(identifierOf(device));
    return found != peripherals.end() ? found->second : nullptr;
}

BluezCentral::BluezPeripheralPtr BluezCentral::at(const QString& path) const {
    const auto found = std::ranges::find_if(
        peripherals, [&](const auto& entry) { return entry.second->path() == path; });
    return found != peripherals.end() ? found->second : nullptr;
}

BluezCentral::BluezPeripheralPtr BluezCentral::shared(const BluezPeripheral& peripheral) const {
    return peripherals.at(peripheral.identifier());
}

void BluezCentral::sign(const QString& path, const QVariantMap& device) {
    if (!isOnOurAdapter(device) || !offersService(device) || !hasAddress(device)) return;
    // An object stays the peripheral that it was: pairing may bring out another address.
    auto peripheral = at(path);
    if (!peripheral) peripheral = known(device);
    if (!peripheral) {
        BluezLinkObserver& observer = *this;
        peripheral = std::make_shared<BluezPeripheral>(daemon, observer, identifierOf(device));
        peripherals.emplace(peripheral->identifier(), peripheral);
    }
    peripheral->appeared(path);
    peripheral->setName(nameOf(device));
    if (peripheral->sighting.sign(BluezSighting::Clock::now())) discover(peripheral);
}

void BluezCentral::discover(const BluezPeripheralPtr& peripheral) {
    if (delegate) delegate->didDiscover(peripheral, {peripheral->name()});
}

void BluezCentral::deviceAppeared(const QString& path) {
    const auto device = daemon.devices().value(path);
    if (!isOnOurAdapter(device)) return;
    if (const auto peripheral = known(device)) peripheral->appeared(path);
    // A daemon that starts shows what it remembers, too; but not while it discovers.
    const bool discovering = daemon.adapters().value(adapter).value(u"Discovering"_s).toBool();
    if (discovering || isOnTheAir(device)) sign(path, device);
}

void BluezCentral::deviceChanged(const QString& path, const QVariantMap& changed) {
    const auto device = daemon.devices().value(path);
    if (!isOnOurAdapter(device)) return;
    if (const auto peripheral = at(path)) {
        peripheral->changed(changed);
        if (peripheral->setName(nameOf(device)) &&
            peripheral->sighting.renamed(BluezSighting::Clock::now()))
            discover(peripheral);
    }
    // Services change by what is heard of the device, too: in another advertisement, say.
    if (changed.contains(u"RSSI"_s) || changed.contains(u"UUIDs"_s) ||
        changed.value(u"Connected"_s).toBool())
        sign(path, device);
}

void BluezCentral::deviceVanished(const QString& path) {
    const auto peripheral = at(path);
    if (!peripheral) return;
    peripheral->sighting.vanished();
    peripheral->vanished();
}

// Links.

void BluezCentral::connect(const PeripheralPtr& peripheral) {
    const auto ours = std::static_pointer_cast<BluezPeripheral>(peripheral);
    if (ours->state() != PeripheralState::disconnected) return;
    ours->sighting.attemptStarted();
    ours->connect();
}

void BluezCentral::cancelConnection(const PeripheralPtr& peripheral) {
    std::static_pointer_cast<BluezPeripheral>(peripheral)->cancel();
}

void BluezCentral::linkUp(BluezPeripheral& peripheral) {
    const auto holder = shared(peripheral);
    const bool renamed = peripheral.sighting.linked();
    reportLinks();
    if (delegate) delegate->didConnect(holder);
    if (renamed) discover(holder);
}

void BluezCentral::linkFailed(BluezPeripheral& peripheral, const CentralError& error) {
    peripheral.sighting.ended(BluezSighting::End::byFailure, BluezSighting::Clock::now());
    if (delegate) delegate->didFailToConnect(shared(peripheral), error);
}

void BluezCentral::linkDown(BluezPeripheral& peripheral, const CentralError& error) {
    const auto end = error ? BluezSighting::End::byFailure : BluezSighting::End::byUs;
    peripheral.sighting.ended(end, BluezSighting::Clock::now());
    reportLinks();
    if (delegate) delegate->didDisconnect(shared(peripheral), error);
}

void BluezCentral::reportLinks() {
    QStringList now;
    for (const auto& [id, peripheral] : peripherals)
        if (peripheral->isLinked()) now += peripheral->path();
    now.sort();
    if (std::exchange(links, now) != now && linksObserver) linksObserver(links);
}

bool BluezCentral::drain(std::chrono::milliseconds limit) {
    const QDeadlineTimer deadline(limit);
    const auto all = peripherals; // what the answers bring may add to them
    for (const auto& [id, peripheral] : all) {
        while (!peripheral->isDrained() && !deadline.hasExpired()) {
            peripheral->flush();
            // Answers of the daemon make room for what comes after them.
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
            QThread::msleep(1);
        }
    }
    return std::ranges::all_of(all, [](const auto& entry) { return entry.second->isDrained(); });
}

} // namespace quenthisar
