// SPDX-License-Identifier: MIT
#pragma once

#include "AppState.h"
#include "Platform/Central.h"
#include "Platform/MainQueue.h"
#include "Platform/SystemLog.h"
#include "Protocol/Report.h"
#include "Support/Uuid.h"
#include "Support/WeakGuard.h"

#include <deque>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>

namespace quenthisar {

/// Finds dongles, connects to them one at a time, and writes payloads to them. The only writer of
/// `AppState::dongles` and `AppState::bluetoothState`. A dongle's id is its peripheral's
/// identifier. Main thread.
class DongleManager final : public CentralDelegate, public PeripheralDelegate {
public:
    static const Uuid serviceUUID;
    static const Uuid inputCharUUID;

    /// Becomes the central's delegate. All four must outlive the manager.
    DongleManager(AppState& appState, Central& central, MainQueue& queue, SystemLog& log);
    DongleManager(const DongleManager&) = delete;
    DongleManager& operator=(const DongleManager&) = delete;
    ~DongleManager();

    /// Scans if Bluetooth is on.
    void startScan();

    /// Asks for a connection, which starts when its turn comes. An id that is then unknown, or
    /// whose peripheral is not disconnected, is dropped.
    void connect(Uuid id);

    /// The user's disconnection: the dongle is not connected automatically until `connect`.
    void disconnect(Uuid id);

    /// Wiggles the target's pointer for 0.6 s, if the dongle is ready meanwhile.
    void identify(const Uuid& id);

    /// Writes without response; drops the payload when the dongle is not ready.
    void send(const Payload& payload, const Uuid& id);

private:
    void didUpdateState() override;
    void didDiscover(const PeripheralPtr& peripheral, const Advertisement& advertisement) override;
    void didConnect(const PeripheralPtr& peripheral) override;
    void didFailToConnect(const PeripheralPtr& peripheral, const CentralError& error) override;
    void didDisconnect(const PeripheralPtr& peripheral, const CentralError& error) override;
    void didDiscoverServices(Peripheral& peripheral, const CentralError& error) override;
    void didDiscoverCharacteristics(Peripheral& peripheral, const Service& service,
                                    const CentralError& error) override;
    void didWriteValue(Peripheral& peripheral, const Characteristic& characteristic,
                       const CentralError& error) override;

    void processQueue();
    void finishInFlight(const Uuid& id);
    void updateState(const Uuid& id, DongleConnectionState state);
    void upsertDongle(const Uuid& id, const std::string& name, DongleConnectionState state);
    bool mayConnectAutomatically(const Uuid& id) const;

    AppState& appState;
    Central& central;
    MainQueue& queue;
    SystemLog& log;
    std::unordered_map<Uuid, PeripheralPtr> peripherals;      // every one seen; never removed
    std::unordered_map<Uuid, Characteristic> characteristics; // of the dongles that are ready
    std::set<Uuid> userDisconnected;
    std::deque<Uuid> pendingConnects; // first in, first out, no doubles
    std::optional<Uuid> inFlight;     // the one attempt under way
    WeakGuard guard;
};

} // namespace quenthisar
