// SPDX-License-Identifier: MIT
#pragma once

#include "Figures.h"

#include "demo/Rig.h"

namespace quenthisar::bench {

struct Extent {
    int rounds = 6;
    double share = 0.5; // of each load's usual time
    std::chrono::milliseconds idle{10'000};
    std::chrono::milliseconds local{4'000};
    std::string only{}; // the loads and states whose name holds this
};

/// Measures all subjects under all loads: in each round every load, under it one subject after the
/// other, so that what disturbs the machine disturbs all alike. Then the program alone. Throws
/// std::runtime_error if something does not start, ends, or is interrupted.
Figures measure(const demo::Programs& programs, const QString& floorProgram, const Extent& extent);

} // namespace quenthisar::bench
