// SPDX-License-Identifier: MIT
#include "Interrupt.h"

#include <csignal>
#include <stdexcept>

namespace quenthisar::demo {

namespace {

volatile std::sig_atomic_t interrupted = 0;

} // namespace

void noteInterrupts() {
    struct sigaction action {};
    action.sa_handler = [](int) { interrupted = 1; };
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    for (const auto number : {SIGINT, SIGTERM, SIGHUP}) sigaction(number, &action, nullptr);
}

bool isInterrupted() {
    return interrupted != 0;
}

void throwIfInterrupted() {
    if (isInterrupted()) throw std::runtime_error("interrupted");
}

} // namespace quenthisar::demo
