// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <map>
#include <optional>

namespace quenthisar::bench {

/// What a process holds.
struct ProcessState {
    long resident = 0;      // KiB of memory that is its own: neither files nor shared with others
    long residentInAll = 0; // KiB, with files and what is shared
    int descriptors = 0, threads = 0, children = 0;
};

/// None if it is gone.
std::optional<ProcessState> processState(pid_t process);

/// How often each thread of a process and of its living children has waited for something, and so
/// was woken, since its start. Empty if the process is gone.
std::map<pid_t, long> wakeUps(pid_t process);

} // namespace quenthisar::bench
