// SPDX-License-Identifier: MIT
#include "Limits.h"

#include <algorithm>
#include <cstdio>

namespace quenthisar::bench {

namespace {

constexpr double latencyOfFloor = 1.5, processorOfFloor = 3;
// Motion at once, if 7 ms have passed since the last.
constexpr double motionPayloadsPerSecond = 143, payloadsPerOther = 2;
// Waiting for the pace of motion would take 4 ms in the middle.
constexpr double keyInFlood = 2; // ms

double ratio(nanoseconds one, nanoseconds other) {
    return static_cast<double>(one.count()) / static_cast<double>(other.count());
}

double payloadsOfAllowed(const Figure& row) {
    const auto seconds = std::chrono::duration<double>{row.duration}.count();
    const auto motion = row.load.motionRate > 0 ? 1 + motionPayloadsPerSecond * seconds : 0;
    return 100 * static_cast<double>(row.payloads.value_or(0)) /
           (motion + payloadsPerOther * static_cast<double>(row.otherEvents));
}

} // namespace

std::vector<Limit> limitsOf(const Figures& figures) {
    std::vector<Limit> result;
    for (const auto& row : figures.rows) {
        const std::string load = row.load.name;
        const auto* floor = figures.find(load, "floor");
        if (row.subject != "program" || !floor) continue;
        const bool isComparable = !row.latencies.empty() && !floor->latencies.empty();
        if (row.load.isFlood() && !row.latencies.empty())
            result.push_back({load + ": latency, ms (a key waits for no timer)",
                              static_cast<double>(row.latency(0.5).count()) / 1e6, keyInFlood});
        // Fast motion is paced, not handed on at once.
        else if (row.load.motionRate <= 125 && isComparable)
            result.push_back({load + ": latency, times the floor's",
                              ratio(row.latency(0.5), floor->latency(0.5)), latencyOfFloor});
        if (row.processor && floor->processor)
            result.push_back({load + ": processor time, times the floor's",
                              ratio(*row.processor, *floor->processor), processorOfFloor});
        if (row.payloads)
            result.push_back({load + ": payloads, % of 143 motions a second and 2 per other event",
                              payloadsOfAllowed(row), 100});
    }
    for (const auto& usage : figures.usages)
        result.push_back({usage.name + ": % of a core", usage.percent(), usage.allowed});
    return result;
}

void print(const std::vector<Limit>& limits) {
    std::puts("");
    for (const auto& limit : limits)
        std::printf("%-6s  %8.2f of %6.2f   %s\n", limit.isMet() ? "met" : "MISSED", limit.measured,
                    limit.allowed, limit.what.c_str());
    const auto missed =
        std::ranges::count_if(limits, [](const Limit& limit) { return !limit.isMet(); });
    std::printf("%td of %zu limits missed\n", missed, limits.size());
}

} // namespace quenthisar::bench
