// SPDX-License-Identifier: MIT
#include "Watch.h"

#include <charconv>
#include <utility>

namespace quenthisar::guard {

void Watch::take(std::string_view message, Clock::time_point now) {
    const auto blank = message.find(' ');
    if (blank == std::string_view::npos) return;
    std::uint32_t number = 0;
    const auto* const last = message.data() + blank;
    const auto [stop, error] = std::from_chars(message.data(), last, number);
    if (error != std::errc{} || stop != last) return;
    resource = number;
    paths.clear();
    message.remove_prefix(blank + 1);
    for (auto end = message.find(' '); end != std::string_view::npos; end = message.find(' ')) {
        paths.emplace_back(message.substr(0, end));
        message.remove_prefix(end + 1);
    }
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
