// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

#include <chrono>
#include <optional>
#include <sys/types.h>

namespace quenthisar::bench {

/// What processes have used of a processor so far, all their threads and living children included,
/// to the nanosecond. None if one of them, but for children, is gone.
std::optional<std::chrono::nanoseconds> processorTime(const QList<pid_t>& processes);

} // namespace quenthisar::bench
