// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Central.h"
#include "Platform/MainQueue.h"

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quenthisar {

struct Write {
    Uuid id;
    Payload payload;
    WriteType type;

    bool operator==(const Write&) const = default;
};

class FakeCentral;

/// A dongle in the air. It answers what it is asked at once, but never inside the call; a test that
/// wants to answer by itself switches that off.
class FakePeripheral final : public Peripheral,
                             public std::enable_shared_from_this<FakePeripheral> {
public:
    FakePeripheral(FakeCentral& owner, const Uuid& uuid) : central(owner), id(uuid) {}

    Uuid identifier() const override { return id; }
    std::optional<std::string> name() const override { return peripheralName; }
    PeripheralState state() const override { return link; }
    void setDelegate(PeripheralDelegate* object) override { delegate = object; }
    const std::vector<Service>& services() const override { return discovered; }
    inline void discoverServices(const Uuid& filter) override;
    inline void discoverCharacteristics(const Uuid& filter, const Service& service) override;
    inline void writeValue(const Payload& value, const Characteristic& characteristic,
                           WriteType type) override;

    FakeCentral& central;
    Uuid id;
    std::optional<std::string> peripheralName = "Zandrovelkin BLE";
    PeripheralState link = PeripheralState::disconnected;
    PeripheralDelegate* delegate = nullptr;
    std::vector<Service> discovered;
    std::vector<Service> offered; // what it has; the first one with the first characteristic counts
    bool answersConnect = true;
    bool answersProbe = true;
    std::optional<std::string> probeError;
};

/// A central in a world that the test arranges, and a log of what was asked of it.
class FakeCentral final : public Central {
public:
    explicit FakeCentral(MainQueue& mainQueue) : queue(mainQueue) {}

    void setDelegate(CentralDelegate* object) override {
        delegate = object;
        if (delegate) report([](CentralDelegate& d) { d.didUpdateState(); });
    }
    CentralState state() const override { return power; }
    void scanForPeripherals(const Uuid& service) override {
        if (onRequest) onRequest("scan", service);
    }

    void connect(const PeripheralPtr& peripheral) override {
        auto& fake = static_cast<FakePeripheral&>(*peripheral);
        if (onRequest) onRequest("connect", fake.id);
        fake.link = PeripheralState::connecting;
        if (fake.answersConnect) queue.async([this, peripheral] { connected(peripheral); });
    }

    void cancelConnection(const PeripheralPtr& peripheral) override {
        if (onRequest) onRequest("cancel", peripheral->identifier());
        if (peripheral->state() == PeripheralState::disconnected) return;
        queue.async([this, peripheral] { drop(peripheral); });
    }

    // What a test makes happen.

    std::shared_ptr<FakePeripheral> add(const Uuid& id, const Uuid& service, const Uuid& input) {
        auto peripheral = std::make_shared<FakePeripheral>(*this, id);
        peripheral->offered = {{service, "service", {{input, "input"}}}};
        return peripheral;
    }

    void setPower(CentralState next) {
        power = next;
        report([](CentralDelegate& d) { d.didUpdateState(); });
    }

    void discover(const PeripheralPtr& peripheral, const Advertisement& advertisement = {}) {
        if (delegate) delegate->didDiscover(peripheral, advertisement);
    }

    void connected(const PeripheralPtr& peripheral) {
        static_cast<FakePeripheral&>(*peripheral).link = PeripheralState::connected;
        if (delegate) delegate->didConnect(peripheral);
    }

    void failToConnect(const PeripheralPtr& peripheral) {
        static_cast<FakePeripheral&>(*peripheral).link = PeripheralState::disconnected;
        if (delegate) delegate->didFailToConnect(peripheral, "refused");
    }

    void drop(const PeripheralPtr& peripheral) {
        auto& fake = static_cast<FakePeripheral&>(*peripheral);
        fake.link = PeripheralState::disconnected;
        fake.discovered.clear();
        if (onDrop) onDrop(fake.id);
        if (delegate) delegate->didDisconnect(peripheral, std::nullopt);
    }

    /// The payloads for `id` that were written without response, in order; taken out of the log.
    std::vector<Payload> takePayloads(const Uuid& id) {
        std::vector<Payload> payloads;
        for (const auto& write : writes)
            if (write.id == id && write.type == WriteType::withoutResponse)
                payloads.push_back(write.payload);
        std::erase_if(writes, [&](const Write& write) { return write.id == id; });
        return payloads;
    }

    MainQueue& queue;
    CentralDelegate* delegate = nullptr;
    CentralState power = CentralState::poweredOn;
    std::vector<Write> writes;
    // For who wants to see each of these as it happens.
    std::function<void(const Write&)> onWrite;
    std::function<void(std::string_view, const Uuid&)> onRequest;
    std::function<void(const Uuid&)> onDrop;

private:
    void report(const std::function<void(CentralDelegate&)>& what) {
        queue.async([this, what] {
            if (delegate) what(*delegate);
        });
    }
};

inline void FakePeripheral::discoverServices(const Uuid& filter) {
    central.queue.async([self = shared_from_this(), filter] {
        for (const auto& service : self->offered)
            if (service.uuid == filter)
                self->discovered.push_back({service.uuid, service.handle, {}});
        if (self->delegate) self->delegate->didDiscoverServices(*self, std::nullopt);
    });
}

inline void FakePeripheral::discoverCharacteristics(const Uuid& filter, const Service& service) {
    central.queue.async([self = shared_from_this(), filter, handle = service.handle] {
        for (auto found : self->offered) {
            if (found.handle != handle) continue;
            std::erase_if(found.characteristics, [&](auto& c) { return c.uuid != filter; });
            if (self->delegate)
                self->delegate->didDiscoverCharacteristics(*self, found, std::nullopt);
        }
    });
}

inline void FakePeripheral::writeValue(const Payload& value, const Characteristic& characteristic,
                                       WriteType type) {
    central.writes.push_back({id, value, type});
    if (central.onWrite) central.onWrite(central.writes.back());
    if (type == WriteType::withoutResponse || !answersProbe) return;
    central.queue.async([self = shared_from_this(), characteristic] {
        if (self->delegate) self->delegate->didWriteValue(*self, characteristic, self->probeError);
    });
}

} // namespace quenthisar
