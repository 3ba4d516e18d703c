// SPDX-License-Identifier: MIT
#pragma once

#include "Load.h"
#include "Receiver.h"

namespace quenthisar::bench {

/// What became of a load's input.
struct Outcome {
    std::vector<nanoseconds> motion; // from the input to when the target's motion covers it
    std::vector<nanoseconds> others;
    std::size_t lost = 0;  // input that never arrived
    std::size_t wrong = 0; // what arrived and nobody had made, or at the wrong place in the order

    bool isExact() const { return lost == 0 && wrong == 0; }
};

/// Motion may arrive merged, but in order: each sum must be a point of the way that was made.
Outcome compare(const Stimuli& stimuli, const std::vector<Clock::time_point>& made,
                const std::vector<Arrival>& arrivals);

} // namespace quenthisar::bench
