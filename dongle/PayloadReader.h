// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <span>
#include <thread>

namespace quenthisar::dongle {

/// Takes payloads from a descriptor, on a thread of its own that sleeps in the reading call: on the
/// main loop the waking would cost more than all the rest. To be used from one other thread.
class PayloadReader {
public:
    struct Handlers {
        std::function<void(std::span<const std::uint8_t>)> take; // on the reader's thread
        std::function<void()> ended; // the far end has closed it; the same thread, once
    };

    /// `descriptor` is a SEQPACKET socket, and is closed with the reader.
    PayloadReader(int descriptor, Handlers handlers, bool reading);
    /// Nothing is taken after it.
    ~PayloadReader();
    PayloadReader(const PayloadReader&) = delete;
    PayloadReader& operator=(const PayloadReader&) = delete;

    /// Returns when it is so. What is not read waits in the socket.
    void setReading(bool on);
    /// Hands on what is there, on the caller's thread, and reads no more.
    void drain();

private:
    enum class Taken { some, none, end };

    void run();
    Taken take(int flags);
    bool isClosed() const;

    const int descriptor;
    const Handlers handlers;
    std::mutex mutex;
    std::condition_variable changed;
    std::atomic<bool> wanted; // read without the lock for each payload
    bool parked = false, ending = false;
    std::thread thread;
};

} // namespace quenthisar::dongle
