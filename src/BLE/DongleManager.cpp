// SPDX-License-Identifier: MIT
#include "BLE/DongleManager.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string_view>

namespace quenthisar {

namespace {

constexpr Seconds connectTimeout{30.0};
constexpr Seconds reconnectDelay{1.0};

// Identify: three periods of a sine.
constexpr int wiggleSteps = 30;
constexpr double wiggleDuration = 0.6;   // seconds
constexpr double wiggleAmplitude = 42.0; // the target's relative mouse units
constexpr double wiggleAngle = 6 * std::numbers::pi;

constexpr std::string_view defaultName = "Zandrovelkin";

constexpr std::string_view word(CentralState state) {
    switch (state) {
    case CentralState::resetting: return "Resetting";
    case CentralState::unsupported: return "Unsupported";
    case CentralState::unauthorized: return "Unauthorized";
    case CentralState::poweredOff: return "Off";
    case CentralState::poweredOn: return "On";
    case CentralState::unknown: return "Unknown";
    }
    return "Unknown";
}

} // namespace

const Uuid DongleManager::serviceUUID = *Uuid::parse("f1e00000-64f2-4b5d-9c51-3e2a5d0d8b10");
const Uuid DongleManager::inputCharUUID = *Uuid::parse("f1e00001-64f2-4b5d-9c51-3e2a5d0d8b10");

DongleManager::DongleManager(AppState& store, Central& centralManager, MainQueue& mainQueue,
                             SystemLog& systemLog)
    : appState(store), central(centralManager), queue(mainQueue), log(systemLog) {
    central.setDelegate(this);
}

DongleManager::~DongleManager() {
    central.setDelegate(nullptr);
    for (const auto& [id, peripheral] : peripherals) peripheral->setDelegate(nullptr);
}

void DongleManager::startScan() {
    if (central.state() == CentralState::poweredOn) central.scanForPeripherals(serviceUUID);
}

void DongleManager::connect(Uuid id) {
    userDisconnected.erase(id);
    if (inFlight != id && std::ranges::find(pendingConnects, id) == pendingConnects.end())
        pendingConnects.push_back(id);
    processQueue();
}

void DongleManager::disconnect(Uuid id) {
    const auto it = peripherals.find(id);
    if (it == peripherals.end()) return;
    userDisconnected.insert(id);
    std::erase(pendingConnects, id);
    central.cancelConnection(it->second);
}

void DongleManager::identify(const Uuid& id) {
    double previous = 0;
    for (int step = 1; step <= wiggleSteps; ++step) {
        const double time = step * wiggleDuration / wiggleSteps;
        const double x = std::sin(time * wiggleAngle / wiggleDuration) * wiggleAmplitude;
        // Rounds halves away from zero; the errors are not carried on.
        const std::int64_t dx = std::llround(x - previous);
        previous = x;
        queue.after(Seconds{time},
                    guard.bind([this, id, dx] { send(Report::mouse({.dx = dx}), id); }));
    }
}

void DongleManager::send(const Payload& payload, const Uuid& id) {
    const auto peripheral = peripherals.find(id);
    const auto characteristic = characteristics.find(id);
    if (peripheral == peripherals.end() || characteristic == characteristics.end()) return;
    if (peripheral->second->state() != PeripheralState::connected) return;
    peripheral->second->writeValue(payload, characteristic->second, WriteType::withoutResponse);
}

void DongleManager::didUpdateState() {
    appState.bluetoothState = std::string{word(central.state())};
    startScan();
}

void DongleManager::didDiscover(const PeripheralPtr& peripheral,
                                const Advertisement& advertisement) {
    const Uuid id = peripheral->identifier();
    peripherals.insert_or_assign(id, peripheral);
    peripheral->setDelegate(this);
    auto name = peripheral->name();
    if (!name) name = advertisement.localName;
    const bool connected = peripheral->state() == PeripheralState::connected;
    upsertDongle(id, name ? *name : std::string{defaultName},
                 connected ? DongleConnectionState::connected
                           : DongleConnectionState::disconnected);
    if (peripheral->state() == PeripheralState::disconnected && mayConnectAutomatically(id))
        connect(id);
}

void DongleManager::didConnect(const PeripheralPtr& peripheral) {
    peripheral->discoverServices(serviceUUID);
}

void DongleManager::didDiscoverServices(Peripheral& peripheral, const CentralError&) {
    const auto services = peripheral.services();
    for (const auto& service : services)
        if (service.uuid == serviceUUID) peripheral.discoverCharacteristics(inputCharUUID, service);
}

void DongleManager::didDiscoverCharacteristics(Peripheral& peripheral, const Service& service,
                                               const CentralError&) {
    const Uuid id = peripheral.identifier();
    for (const auto& characteristic : service.characteristics) {
        if (characteristic.uuid != inputCharUUID) continue;
        characteristics.insert_or_assign(id, characteristic);
        updateState(id, DongleConnectionState::connected);
        peripheral.writeValue(Report::pairingProbe, characteristic, WriteType::withResponse);
    }
}

void DongleManager::didWriteValue(Peripheral& peripheral, const Characteristic&,
                                  const CentralError& error) {
    const Uuid id = peripheral.identifier();
    if (error) log.log("Quenthisar: pairing/write failed for " + id.text() + ": " + *error);
    finishInFlight(id);
}

void DongleManager::didFailToConnect(const PeripheralPtr& peripheral, const CentralError&) {
    const Uuid id = peripheral->identifier();
    updateState(id, DongleConnectionState::disconnected);
    finishInFlight(id);
}

void DongleManager::didDisconnect(const PeripheralPtr& peripheral, const CentralError&) {
    const Uuid id = peripheral->identifier();
    characteristics.erase(id);
    updateState(id, DongleConnectionState::disconnected);
    finishInFlight(id);
    if (!mayConnectAutomatically(id)) return;
    queue.after(reconnectDelay, guard.bind([this, id] {
        if (mayConnectAutomatically(id)) connect(id);
    }));
}

void DongleManager::processQueue() {
    while (!inFlight && !pendingConnects.empty()) {
        const Uuid id = pendingConnects.front();
        pendingConnects.pop_front();
        const auto it = peripherals.find(id);
        if (it == peripherals.end() || it->second->state() != PeripheralState::disconnected)
            continue;
        inFlight = id;
        updateState(id, DongleConnectionState::connecting);
        central.connect(it->second);
        // Not cancelled by the attempt's end: it belongs to the id, whatever attempt it meets.
        queue.after(connectTimeout, guard.bind([this, id] { finishInFlight(id); }));
    }
}

void DongleManager::finishInFlight(const Uuid& id) {
    if (inFlight != id) return;
    inFlight.reset();
    processQueue();
}

void DongleManager::updateState(const Uuid& id, DongleConnectionState state) {
    if (!appState.dongle(id)) return;
    appState.dongles.modify(
        [&](auto& dongles) { std::ranges::find(dongles, id, &Dongle::id)->state = state; });
}

void DongleManager::upsertDongle(const Uuid& id, const std::string& name,
                                 DongleConnectionState state) {
    const Dongle* known = appState.dongle(id);
    if (!known) {
        appState.dongles.modify([&](auto& dongles) { dongles.push_back({id, name, state}); });
        return;
    }
    const bool staysConnected = known->state == DongleConnectionState::connected;
    appState.dongles.modify(
        [&](auto& dongles) { std::ranges::find(dongles, id, &Dongle::id)->name = name; });
    if (!staysConnected) updateState(id, state);
}

bool DongleManager::mayConnectAutomatically(const Uuid& id) const {
    return *appState.autoConnect && !userDisconnected.contains(id) &&
           appState.configuredDongleIDs().contains(id);
}

} // namespace quenthisar
