// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/BluezPayloadQueue.h"
#include "Platform/Central.h"
#include "Support/WeakGuard.h"

#include <QSocketNotifier>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quenthisar {

class BluezDaemon;

/// Writes to one characteristic for as long as one link lasts, in order. Requests go over the bus;
/// after them the daemon hands out a descriptor that takes the payloads without a round trip each.
/// Where it doesn't, they go over the bus too. Main thread.
class BluezPayloadWriter {
public:
    using Answer = std::function<void(const CentralError&)>;

    /// `hopeless` is called, perhaps within `write`, when more waits than will ever be sent.
    BluezPayloadWriter(BluezDaemon& daemon, const Characteristic& characteristic,
                       std::function<void()> hopeless);
    ~BluezPayloadWriter();
    BluezPayloadWriter(const BluezPayloadWriter&) = delete;
    BluezPayloadWriter& operator=(const BluezPayloadWriter&) = delete;

    const Characteristic& characteristic() const { return target; }

    /// `answer` is called once, later; never once this writer is gone.
    void request(const Payload& payload, Answer answer);
    /// Payloads wait as long as a request is under way.
    void write(const Payload& payload);

    /// Requests without an answer so far.
    int requestsUnderWay() const { return requests; }
    /// Whether everything written was taken by the daemon. Asks the kernel.
    bool isDrained() const;
    /// Sends what waits and the link takes; for who can't wait for the event loop.
    void flush();

private:
    /// `taken`: another client has the characteristic to itself.
    enum class Way { unknown, acquiring, taken, descriptor, commands, none };

    void acquire();
    void waitForOthers();
    void take(int acquired);
    bool send(const Payload& payload);
    void sendThroughDescriptor();
    void sendCommand();
    void closeDescriptor();

    BluezDaemon& daemon;
    Characteristic target;
    std::function<void()> hopeless;
    BluezPayloadQueue queue;
    Way way = Way::unknown;
    int requests = 0;
    bool commandUnderWay = false;
    int descriptor = -1;
    bool carried = false;                      // the descriptor has taken a payload
    std::unique_ptr<QSocketNotifier> writable; // enabled while the descriptor is full
    WeakGuard guard;
};

} // namespace quenthisar
