// SPDX-License-Identifier: MIT
#include "Watch.h"

#include <charconv>
#include <utility>

namespace quenthisar::guard {

void Watch::take(std::string_view message, Clock::time_point now) {
    const auto blank = message.find(' ');
    if (blank == std::string_view::npos) return;
    std::uint32_t number = 0;
    const auto* const end = message.data() + blank;
    const auto [stop, error] = std::from_chars(message.data(), end, number);
    if (error != std::errc{} || stop != end) return;
    resource = number;
    path = message.substr(blank + 1);
    due.reset();
    graceGiven = false;
    if (resource != 0) due = now + silence;
}

std::optional<std::uint32_t> Watch::expired(Clock::time_point now) {
    if (!due || now < *due) return std::nullopt;
    if (now > *due + grace && !std::exchange(graceGiven, true)) {
        due = now + grace;
        return std::nullopt;
    }
    due.reset();
    return std::exchange(resource, 0);
}

} // namespace quenthisar::guard
