// SPDX-License-Identifier: MIT
#pragma once

/// Ctrl+C and SIGTERM as something to ask for, so that all that was started is ended in order.
namespace quenthisar::demo {

/// From now on the first of them is only noted; the second ends this process.
void noteInterrupts();
bool isInterrupted();
/// Throws std::runtime_error if so.
void throwIfInterrupted();

} // namespace quenthisar::demo
