// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace quenthisar {

/// How often this process has asked for memory by `new` so far, on all threads. Only in a program
/// that links Allocations.cpp, whose `new` counts.
std::size_t allocations();

} // namespace quenthisar
