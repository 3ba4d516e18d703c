// SPDX-License-Identifier: MIT
#include "Load.h"

#include <algorithm>
#include <array>

namespace quenthisar::bench {

namespace {

using namespace std::chrono_literals;

constexpr std::array<std::uint8_t, 4> letterKeys{38, 39, 40, 41}; // A, S, D and F by position
constexpr std::array<std::uint8_t, 3> buttons{1, 3, 2};
constexpr std::array<std::uint8_t, 2> wheelButtons{wheelUp, wheelDown};
constexpr int stepsOneWay = 300;

template <std::size_t size>
std::uint8_t nth(const std::array<std::uint8_t, size>& details, int number) {
    return details[static_cast<std::size_t>(number) % size];
}

Stimulus motion(int number) {
    const bool isBack = number / stepsOneWay % 2 != 0;
    return {.kind = Kind::motion, .delta = {isBack ? -1 : 1, 1}};
}

Stimulus other(Kind kind, int number) {
    const bool isDown = number % 2 == 0;
    switch (kind) {
    case Kind::key: return {.kind = kind, .detail = nth(letterKeys, number / 2), .isDown = isDown};
    case Kind::button: return {.kind = kind, .detail = nth(buttons, number / 2), .isDown = isDown};
    case Kind::scroll: return {.kind = kind, .detail = nth(wheelButtons, number / 4)};
    case Kind::motion: break;
    }
    return {};
}

} // namespace

Stimuli Load::stimuli(double share) const {
    const auto countAt = [&](int rate) { return static_cast<int>(rate * seconds * share); };
    Stimuli result;
    for (int i = 0; i < countAt(motionRate); ++i) {
        result.push_back(motion(i));
        result.back().due = nanoseconds{1s} * i / motionRate;
    }
    for (int i = 0; i < countAt(otherRate) / 2 * 2; ++i) {
        result.push_back(bench::other(other, i));
        // Off the beat, or each would come right after a motion.
        result.back().due = nanoseconds{1s} * (10 * i + i % 7) / (10 * otherRate);
    }
    std::ranges::stable_sort(result, {}, &Stimulus::due);
    return result;
}

const std::vector<Load>& allLoads() {
    static const std::vector<Load> loads{
        {"motion at 125 Hz", 125, 0, Kind::motion, 3},
        {"motion at 1,000 Hz", 1'000, 0, Kind::motion, 2},
        {"motion at 8,000 Hz", 8'000, 0, Kind::motion, 2},
        {"keys", 0, 100, Kind::key, 3},
        {"buttons", 0, 100, Kind::button, 3},
        {"scrolling", 0, 100, Kind::scroll, 3},
        {"key in 1,000 Hz", 1'000, 50, Kind::key, 3},
        {"key in 8,000 Hz", 8'000, 50, Kind::key, 3},
    };
    return loads;
}

} // namespace quenthisar::bench
