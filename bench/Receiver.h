// SPDX-License-Identifier: MIT
#pragma once

#include "Load.h"

#include <QString>

#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>
#include <xcb/xcb.h>

namespace quenthisar::bench {

/// An input event that a client of a server got.
struct Arrival {
    Clock::time_point time{};
    Kind kind = Kind::motion;
    std::uint8_t detail = 0;
    bool isDown = false;
    QPoint delta{};
};

/// A client of a server that is told of all input there (raw events), on a thread of its own.
class Receiver {
public:
    /// Everything that the server does from now on arrives here. Throws std::runtime_error if there
    /// is no such server, or it lacks XInput 2.2.
    explicit Receiver(const QString& display);

    /// What has arrived so far, in order.
    std::vector<Arrival> arrivals() const;
    struct Progress {
        qsizetype downwards = 0; // the sum of motion in y
        std::size_t others = 0;  // all that is no motion
    };
    Progress progress() const;

private:
    void receive(const std::stop_token& stop, xcb_connection_t* connection);

    mutable std::mutex mutex; // of the two below
    std::vector<Arrival> received;
    Progress sums;
    std::jthread thread;
};

} // namespace quenthisar::bench
