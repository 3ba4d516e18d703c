// SPDX-License-Identifier: MIT
#pragma once

#include "Protocol/Report.h"

#include <chrono>
#include <cstddef>
#include <deque>

namespace quenthisar {

/// What the link does not take at the moment, in order. Nothing downstream pushes back, so the
/// queue itself bounds what a slow link costs.
class BluezPayloadQueue {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t motionLimit = 64;
    static constexpr std::size_t otherLimit = 4096;
    /// Nobody wants the keys of half a minute typed in one burst.
    static constexpr std::chrono::seconds staleAge{2};

    /// Appends. Beyond `motionLimit` the oldest pure motion is dropped. False if `otherLimit`
    /// others wait: then the link is hopeless.
    [[nodiscard]] bool push(const Payload& payload, Clock::time_point now);

    /// Notes what needed no queue, because nothing waits.
    void pass(const Payload& payload);

    /// Drops what is older than `staleAge`, but keeps the state in which it leaves the target: the
    /// last keyboard report, the last mouse report without its motion, and a media key's release.
    void dropStale(Clock::time_point now);

    bool empty() const { return entries.empty(); }
    const Payload& front() const { return entries.front().payload; }
    void pop();
    void clear();

    struct Entry {
        Payload payload;
        Clock::time_point since;
        bool pureMotion;
    };
    /// Takes the front out, perhaps to put it back there.
    Entry take();
    void putBack(const Entry& entry);

private:
    void dropOldestMotion();

    std::deque<Entry> entries;
    std::size_t motions = 0; // of `entries`, how many are pure motion
    Payload latestMouse = Report::mouse({});
};

} // namespace quenthisar
