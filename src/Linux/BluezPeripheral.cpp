// SPDX-License-Identifier: MIT
#include "Linux/BluezPeripheral.h"

#include <algorithm>
#include <utility>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

constexpr auto lostText = "the link is lost";

bool holds(const QVariantMap& properties, const QString& name) {
    return properties.value(name).toBool();
}

CentralError errorOf(const QDBusMessage& reply) {
    return (reply.errorName() + u": "_s + reply.errorMessage()).toStdString();
}

} // namespace

BluezPeripheral::BluezPeripheral(BluezDaemon& daemon, BluezLinkObserver& observer,
                                 const Uuid& identifier)
    : daemon(daemon), observer(observer), id(identifier) {}

void BluezPeripheral::later(std::function<void()> action) {
    daemon.queue().async(guard.bind(std::move(action)));
}

bool BluezPeripheral::setName(const std::optional<std::string>& name) {
    return std::exchange(shownName, name) != name;
}

void BluezPeripheral::appeared(const QString& path) {
    if (devicePath.isEmpty() || currentState == PeripheralState::disconnected) devicePath = path;
}

// The link.

void BluezPeripheral::connect() {
    if (currentState != PeripheralState::disconnected) return;
    currentState = PeripheralState::connecting;
    accepted = false;
    const auto mine = ++attempt;
    if (devicePath.isEmpty()) {
        later([this, mine] {
            if (mine == attempt) fail("the device is not there");
        });
        return;
    }
    // The daemon may take longer to fail than D-Bus's own limit.
    daemon.call(devicePath, Bluez::device, u"Connect"_s, {}, BluezDaemon::Limit::none,
                guard.bind([this, mine](const QDBusMessage& reply) {
                    if (mine == attempt) connectAnswered(reply);
                }));
}

void BluezPeripheral::connectAnswered(const QDBusMessage& reply) {
    if (reply.type() == QDBusMessage::ErrorMessage &&
        reply.errorName() != "org.bluez.Error.AlreadyConnected"_L1) {
        fail(errorOf(reply));
        return;
    }
    accepted = true;
    becomeConnectedIfReady();
}

void BluezPeripheral::becomeConnectedIfReady() {
    // Connected is not looked at: a daemon that hears of the link from the socket first, as happens
    // while it discovers, never announces it.
    if (!accepted || !holds(daemon.devices().value(devicePath), u"ServicesResolved"_s)) return;
    currentState = PeripheralState::connected;
    observer.linkUp(*this);
}

void BluezPeripheral::changed(const QVariantMap& properties) {
    const bool wentDown = properties.contains(u"Connected"_s) && !holds(properties, u"Connected"_s);
    switch (currentState) {
    case PeripheralState::connecting:
        if (wentDown && accepted)
            fail(lostText);
        else
            becomeConnectedIfReady();
        return;
    case PeripheralState::connected:
        if (wentDown) loseLink(lostText);
        return;
    case PeripheralState::disconnecting: // the answer to our own request ends it
    case PeripheralState::disconnected: return;
    }
}

void BluezPeripheral::cancel() {
    if (currentState == PeripheralState::connecting || currentState == PeripheralState::connected)
        endLink(std::nullopt);
}

void BluezPeripheral::endLink(const CentralError& reason) {
    currentState = PeripheralState::disconnecting;
    const auto ended = [this, reason, mine = ++attempt] {
        if (mine == attempt) loseLink(reason);
    };
    if (devicePath.isEmpty()) {
        later(ended);
        return;
    }
    daemon.call(devicePath, Bluez::device, u"Disconnect"_s, {}, BluezDaemon::Limit::usual,
                guard.bind([ended](const QDBusMessage&) { ended(); }));
}

void BluezPeripheral::vanished() {
    devicePath.clear();
    switch (currentState) {
    case PeripheralState::connecting: fail("the device is gone"); return;
    case PeripheralState::connected: loseLink("the device is gone"); return;
    case PeripheralState::disconnecting: loseLink(std::nullopt); return;
    case PeripheralState::disconnected: return;
    }
}

void BluezPeripheral::fail(const CentralError& error) {
    currentState = PeripheralState::disconnected;
    ++attempt;
    observer.linkFailed(*this, error);
}

void BluezPeripheral::loseLink(const CentralError& error) {
    currentState = PeripheralState::disconnected;
    ++attempt;
    objects.clear();
    discovered.clear();
    const auto ended = std::exchange(writers, {});
    for (const auto& writer : ended)
        for (int request = writer->requestsUnderWay(); request > 0 && delegate; --request)
            delegate->didWriteValue(*this, writer->characteristic(), error.value_or(lostText));
    observer.linkDown(*this, error);
}

void BluezPeripheral::hopeless() {
    if (currentState == PeripheralState::connected) endLink("the link takes no payloads");
}

// Services and characteristics.

void BluezPeripheral::discoverServices(const Uuid& filter) {
    if (currentState != PeripheralState::connected) return;
    // The objects of the services may be announced after the device says that they are resolved.
    daemon.readObjects(guard.bind(
        [this, filter, mine = attempt](const BluezObjects& read, const QDBusMessage& reply) {
            if (mine != attempt || currentState != PeripheralState::connected) return;
            CentralError error;
            if (reply.type() == QDBusMessage::ErrorMessage)
                error = errorOf(reply);
            else
                takeServices(filter, read);
            if (delegate) delegate->didDiscoverServices(*this, error);
        }));
}

void BluezPeripheral::takeServices(const Uuid& filter, const BluezObjects& read) {
    objects = read;
    discovered.clear();
    for (auto object = read.begin(); object != read.end(); ++object) {
        const auto service = object->value(Bluez::gattService);
        const auto uuid = Uuid::parse(service.value(u"UUID"_s).toString().toStdString());
        const auto device = service.value(u"Device"_s).value<QDBusObjectPath>().path();
        if (uuid == filter && device == devicePath)
            discovered.push_back({*uuid, object.key().path().toStdString(), {}});
    }
}

void BluezPeripheral::discoverCharacteristics(const Uuid& filter, const Service& service) {
    later([this, filter, handle = service.handle, mine = attempt] {
        if (mine != attempt || currentState != PeripheralState::connected) return;
        const auto found = std::ranges::find(discovered, handle, &Service::handle);
        if (found == discovered.end()) return;
        found->characteristics.clear();
        for (auto object = objects.begin(); object != objects.end(); ++object) {
            const auto item = object->value(Bluez::gattCharacteristic);
            const auto uuid = Uuid::parse(item.value(u"UUID"_s).toString().toStdString());
            const auto parent = item.value(u"Service"_s).value<QDBusObjectPath>().path();
            if (uuid == filter && parent.toStdString() == handle)
                found->characteristics.push_back({*uuid, object.key().path().toStdString()});
        }
        const Service answered = *found; // the delegate may end the link
        if (delegate) delegate->didDiscoverCharacteristics(*this, answered, std::nullopt);
    });
}

// Writing.

void BluezPeripheral::writeValue(const Payload& value, const Characteristic& characteristic,
                                 WriteType type) {
    const bool connected = currentState == PeripheralState::connected;
    switch (type) {
    case WriteType::withoutResponse:
        if (connected) writerFor(characteristic).write(value);
        return;
    case WriteType::withResponse:
        const auto answer = [this, characteristic](const CentralError& error) {
            if (delegate) delegate->didWriteValue(*this, characteristic, error);
        };
        if (connected)
            writerFor(characteristic).request(value, answer);
        else
            later([answer] { answer("not connected"); });
        return;
    }
}

BluezPayloadWriter& BluezPeripheral::writerFor(const Characteristic& characteristic) {
    const auto found = std::ranges::find_if(writers, [&](const auto& writer) {
        return writer->characteristic().handle == characteristic.handle;
    });
    if (found != writers.end()) return **found;
    return *writers.emplace_back(
        std::make_unique<BluezPayloadWriter>(daemon, characteristic, [this] { hopeless(); }));
}

bool BluezPeripheral::awaitsAnswer() const {
    return std::ranges::any_of(writers,
                               [](const auto& writer) { return writer->requestsUnderWay() > 0; });
}

bool BluezPeripheral::isDrained() const {
    return std::ranges::all_of(writers, [](const auto& writer) { return writer->isDrained(); });
}

void BluezPeripheral::flush() {
    for (const auto& writer : writers) writer->flush();
}

} // namespace quenthisar
