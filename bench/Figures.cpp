// SPDX-License-Identifier: MIT
#include "Figures.h"

#include <algorithm>
#include <cstdio>

namespace quenthisar::bench {

namespace {

double milliseconds(nanoseconds time) {
    return std::chrono::duration<double, std::milli>{time}.count();
}

std::string text(const char* format, double number) {
    std::string result(32, '\0');
    const auto size = std::snprintf(result.data(), result.size(), format, number);
    result.resize(static_cast<std::size_t>(std::max(size, 0)));
    return result;
}

void print(const Figure& row) {
    const auto latency = [&](double share) {
        return row.latencies.empty() ? "-" : text("%.3f", milliseconds(row.latency(share)));
    };
    const auto processor =
        row.processor ? text("%.1f", row.perEvent(*row.processor)) : std::string{"-"};
    const auto dongle = row.payloads ? text("%.1f", row.perEvent(row.dongle)) : std::string{"-"};
    const auto payloads =
        row.payloads ? text("%.3f", static_cast<double>(*row.payloads) /
                                        static_cast<double>(std::max<std::size_t>(row.events, 1)))
                     : std::string{"-"};
    std::printf("%-18s %-8s %7zu %10s %9s %9s %7s %8s %9s %5zu %6zu\n", row.load.name,
                row.subject.c_str(), row.events, latency(0.5).c_str(), latency(0.99).c_str(),
                processor.c_str(), dongle.c_str(), text("%.1f", row.perEvent(row.servers)).c_str(),
                payloads.c_str(), row.lost, row.wrong);
}

} // namespace

nanoseconds Figure::latency(double share) const {
    auto sorted = latencies;
    const auto last = static_cast<double>(sorted.size() - 1);
    const auto at = sorted.begin() + static_cast<std::ptrdiff_t>(last * share);
    std::ranges::nth_element(sorted, at);
    return *at;
}

double Figure::perEvent(nanoseconds processorTime) const {
    return std::chrono::duration<double, std::micro>{processorTime}.count() /
           static_cast<double>(std::max<std::size_t>(events, 1));
}

double Usage::percent() const {
    return 100.0 * static_cast<double>(processor.count()) / static_cast<double>(duration.count());
}

const Figure* Figures::find(const std::string& load, const std::string& subject) const {
    const auto row = std::ranges::find_if(rows, [&](const Figure& each) {
        return each.load.name == load && each.subject == subject;
    });
    return row != rows.end() ? &*row : nullptr;
}

bool Figures::isExact() const {
    return std::ranges::all_of(rows,
                               [](const Figure& row) { return row.lost == 0 && row.wrong == 0; });
}

void print(const Figures& figures) {
    std::printf("%-18s %-8s %7s %10s %9s %9s %7s %8s %9s %5s %6s\n", "load", "subject", "events",
                "median ms", "99 % ms", "us/event", "dongle", "servers", "payloads", "lost",
                "wrong");
    for (const auto& row : figures.rows) print(row);
    std::puts("\nus/event: processor time of all between the two X servers; of it the virtual "
              "dongle's; the servers'.\nPayloads are per event. A merged motion has arrived when "
              "the target's motion covers it. In "
              "a flood the latency is the keys'.\n");
    for (const auto& usage : figures.usages)
        std::printf("%-34s %7.3f %% of a core, over %.0f s\n", usage.name.c_str(), usage.percent(),
                    std::chrono::duration<double>{usage.duration}.count());
}

} // namespace quenthisar::bench
