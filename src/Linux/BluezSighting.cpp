// SPDX-License-Identifier: MIT
#include "Linux/BluezSighting.h"

#include <utility>

namespace quenthisar {

void BluezSighting::scanStarted() {
    discovered = false;
    notBefore = {};
}

bool BluezSighting::sign(Clock::time_point now) {
    if (phase != Phase::apart || discovered || now < notBefore) return false;
    discovered = true;
    return true;
}

bool BluezSighting::renamed(Clock::time_point now) {
    switch (phase) {
    case Phase::apart: return discovered && now >= notBefore;
    case Phase::attempting: renamedMeanwhile = true; return false;
    case Phase::linked: return true;
    }
    return false;
}

void BluezSighting::attemptStarted() {
    phase = Phase::attempting;
    renamedMeanwhile = false;
}

bool BluezSighting::linked() {
    phase = Phase::linked;
    return std::exchange(renamedMeanwhile, false);
}

void BluezSighting::ended(End end, Clock::time_point now) {
    phase = Phase::apart;
    discovered = false;
    if (end == End::byFailure) notBefore = now + pause;
}

} // namespace quenthisar
