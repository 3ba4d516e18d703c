// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quenthisar::guard {

/// What the guard knows of the program, and when it has been silent for too long.
class Watch {
public:
    using Clock = std::chrono::steady_clock;

    /// The main loop's silence that counts as a hang. Its sign of life comes each 500 ms.
    static constexpr std::chrono::milliseconds silence{2000};
    /// Given once more when the guard itself was held up, as by a frozen machine: the program may
    /// have been held up with it.
    static constexpr std::chrono::milliseconds grace{250};

    /// A message is a sign of life and says all there is to know: an X resource of the connection
    /// that holds the session's input (0: none does), a blank, and the Bluetooth daemon's objects
    /// of the dongles on whose targets something may be held, with a blank after each.
    void take(std::string_view message, Clock::time_point now);

    /// When to look again; none while nothing holds the input.
    std::optional<Clock::time_point> deadline() const { return due; }
    /// To be called at the deadline: the resource whose connection is to be closed, once.
    std::optional<std::uint32_t> expired(Clock::time_point now);

    const std::vector<std::string>& dongles() const { return paths; }

private:
    std::uint32_t resource = 0;
    std::vector<std::string> paths;
    std::optional<Clock::time_point> due;
    bool graceGiven = false;
};

} // namespace quenthisar::guard
