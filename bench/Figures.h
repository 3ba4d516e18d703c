// SPDX-License-Identifier: MIT
#pragma once

#include "Arrivals.h"

#include <optional>
#include <string>

namespace quenthisar::bench {

/// One subject under one load, over all rounds.
struct Figure {
    Load load;
    std::string subject;
    std::vector<nanoseconds> latencies{};   // of keys in a flood: of the keys
    std::vector<nanoseconds> floodMotion{}; // of keys in a flood: of the motion
    std::size_t events = 0, otherEvents = 0;
    std::size_t lost = 0, wrong = 0; // see `Outcome`
    nanoseconds duration{};
    std::optional<nanoseconds> processor{}; // none if nothing brings the input over
    nanoseconds dongle{};                   // of `processor`, the virtual dongle's
    nanoseconds servers{};                  // of the X servers
    std::optional<std::size_t> payloads{};  // none without a link

    /// `share` 0.5 is the median. Only of a figure with latencies.
    nanoseconds latency(double share) const;
    double perEvent(nanoseconds processorTime) const; // in microseconds
};

/// What the program alone uses of a core while nothing is sent.
struct Usage {
    std::string name;
    double allowed = 0; // percent
    nanoseconds duration{}, processor{};

    double percent() const;
};

struct Figures {
    std::vector<Figure> rows;
    std::vector<Usage> usages;

    const Figure* find(const std::string& load, const std::string& subject) const;
    /// Whether all that was made has arrived, exactly, wherever it was measured.
    bool isExact() const;
};

void print(const Figures& figures);

} // namespace quenthisar::bench
