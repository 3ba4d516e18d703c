// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <optional>

namespace quenthisar::bench {

/// What a process holds.
struct ProcessState {
    long resident = 0; // KiB of memory that is its own: neither files nor shared with others
    int descriptors = 0, threads = 0, children = 0;
};

/// None if it is gone.
std::optional<ProcessState> processState(pid_t process);

} // namespace quenthisar::bench
