// SPDX-License-Identifier: MIT
#pragma once

#include "Limits.h"

#include <QString>

namespace quenthisar::bench {

/// Writes all of it as JSON, each single latency included. False if it can't be written.
bool writeData(const QString& path, const Figures& figures, const std::vector<Limit>& limits);

} // namespace quenthisar::bench
