// SPDX-License-Identifier: MIT
#pragma once

#include "Figures.h"

namespace quenthisar::bench {

/// Something that is to hold, and what was measured.
struct Limit {
    std::string what;
    double measured = 0, allowed = 0; // in the unit that `what` names

    bool isMet() const { return measured <= allowed; }
};

/// All that the figures tell about; a limit whose figures are missing is missing.
std::vector<Limit> limitsOf(const Figures& figures);

void print(const std::vector<Limit>& limits);

} // namespace quenthisar::bench
