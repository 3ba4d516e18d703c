// SPDX-License-Identifier: MIT
// The messages that the guard gets from a program of which it can't be sure any more.
#include "Watch.h"

#include "Target.h"

#include <algorithm>

namespace quenthisar {

void fuzz::run(Bytes input) {
    using guard::Watch;
    Reader reader(input);
    Watch watch;
    Watch::Clock::time_point now{};
    while (!reader.atEnd()) {
        now += std::chrono::milliseconds{reader.byte() * 20};
        const auto before = watch.dongles();
        const auto message = reader.text();
        watch.take(message, now);
        const auto& paths = watch.dongles();
        require(paths == before || std::ranges::count(message, ' ') == std::ssize(paths) + 1,
                "names dongles that were not named");
        require(std::ranges::all_of(
                    paths, [](const auto& path) { return path.find(' ') == std::string::npos; }),
                "a path with a blank");
        require(!watch.deadline() || *watch.deadline() <= now + Watch::silence + Watch::grace,
                "waits too long");
        if (reader.flag()) {
            const auto late = watch.expired(now);
            require(!late || *late != 0, "ends the connection of nobody");
            require(!late || !watch.deadline(), "does so twice");
        }
    }
    // Then it is silent.
    for (int i = 0; i < 3 && watch.deadline(); ++i) {
        now = *watch.deadline();
        watch.expired(now);
    }
    require(!watch.deadline(), "waits for ever");
}

} // namespace quenthisar
