// SPDX-License-Identifier: MIT
#pragma once

#include "Protocol/Report.h"
#include "Support/Uuid.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quenthisar {

enum class CentralState { unknown, resetting, unsupported, unauthorized, poweredOff, poweredOn };

enum class PeripheralState { disconnected, connecting, connected, disconnecting };

enum class WriteType { withResponse, withoutResponse };

/// A GATT characteristic of a connected peripheral. Worthless after the peripheral's disconnection.
struct Characteristic {
    Uuid uuid;
    std::string handle; // the platform's own name for it
};

/// A GATT service of a connected peripheral, with the characteristics discovered so far.
struct Service {
    Uuid uuid;
    std::string handle; // the platform's own name for it
    std::vector<Characteristic> characteristics;
};

/// Text that says what went wrong.
using CentralError = std::optional<std::string>;

class Peripheral;

/// What a peripheral reports, on the main thread, never inside a call to it.
class PeripheralDelegate {
public:
    virtual void didDiscoverServices(Peripheral& peripheral, const CentralError& error) = 0;
    virtual void didDiscoverCharacteristics(Peripheral& peripheral, const Service& service,
                                            const CentralError& error) = 0;
    /// Answers each write with response, once; a link that is lost meanwhile answers with an error
    /// before it is reported as disconnected.
    virtual void didWriteValue(Peripheral& peripheral, const Characteristic& characteristic,
                               const CentralError& error) = 0;

protected:
    ~PeripheralDelegate() = default;
};

/// A Bluetooth LE device that was seen at least once. The same object for its identifier as long as
/// the process lives. Main thread.
class Peripheral {
public:
    virtual ~Peripheral() = default;

    virtual Uuid identifier() const = 0;
    virtual std::optional<std::string> name() const = 0;
    virtual PeripheralState state() const = 0;
    /// Not owned; null for none.
    virtual void setDelegate(PeripheralDelegate* delegate) = 0;

    /// Looks for the service on the connected peripheral; without a link it never answers.
    virtual void discoverServices(const Uuid& filter) = 0;
    /// The services discovered so far; empty after a disconnection.
    virtual const std::vector<Service>& services() const = 0;
    virtual void discoverCharacteristics(const Uuid& filter, const Service& service) = 0;

    /// Writes keep their order. Without response: nothing is reported, and a payload that cannot
    /// be sent is lost.
    virtual void writeValue(const Payload& value, const Characteristic& characteristic,
                            WriteType type) = 0;
};

using PeripheralPtr = std::shared_ptr<Peripheral>;

struct Advertisement {
    std::optional<std::string> localName;
};

/// What the central reports, on the main thread, never inside a call to it.
class CentralDelegate {
public:
    /// Also once after the delegate is set.
    virtual void didUpdateState() = 0;
    virtual void didDiscover(const PeripheralPtr& peripheral,
                             const Advertisement& advertisement) = 0;
    virtual void didConnect(const PeripheralPtr& peripheral) = 0;
    virtual void didFailToConnect(const PeripheralPtr& peripheral, const CentralError& error) = 0;
    virtual void didDisconnect(const PeripheralPtr& peripheral, const CentralError& error) = 0;

protected:
    ~CentralDelegate() = default;
};

/// The host's Bluetooth LE central. Main thread.
class Central {
public:
    virtual ~Central() = default;

    /// Not owned; null for none. Nothing is reported before.
    virtual void setDelegate(CentralDelegate* delegate) = 0;
    virtual CentralState state() const = 0;

    /// Reports each peripheral that advertises `service`, once per scan. Never stopped.
    virtual void scanForPeripherals(const Uuid& service) = 0;

    /// Answered by `didConnect` or `didFailToConnect`, however late. Nothing unless it is
    /// disconnected.
    virtual void connect(const PeripheralPtr& peripheral) = 0;
    /// Ends a link or an attempt; answered by `didDisconnect`. Nothing without either.
    virtual void cancelConnection(const PeripheralPtr& peripheral) = 0;
};

} // namespace quenthisar
