// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace quenthisar {

/// When a device that shows a sign of itself counts as discovered: once per scan, and once more
/// after each link, failed attempt or absence. Never during an attempt.
class BluezSighting {
public:
    using Clock = std::chrono::steady_clock;

    /// After a failed attempt or a lost link, so that whoever connects what is discovered doesn't
    /// hammer a device at the rim of its range.
    static constexpr std::chrono::seconds pause{10};

    enum class End { byUs, byFailure };

    /// Forgets everything but an attempt or link under way.
    void scanStarted();
    /// True if this sign is a discovery.
    [[nodiscard]] bool sign(Clock::time_point now);
    /// True if the new name is to be told now; if not, the next discovery brings it.
    [[nodiscard]] bool renamed(Clock::time_point now);
    void vanished() { discovered = false; }

    void attemptStarted();
    /// True if the device was renamed meanwhile, which is to be told now.
    [[nodiscard]] bool linked();
    /// The end of an attempt or link.
    void ended(End end, Clock::time_point now);

private:
    enum class Phase { apart, attempting, linked };

    Phase phase = Phase::apart;
    bool discovered = false;
    bool renamedMeanwhile = false;
    Clock::time_point notBefore{};
};

} // namespace quenthisar
