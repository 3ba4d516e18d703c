// SPDX-License-Identifier: MIT
// What users, radio and the host may do, in any order: the whole core with a fake behind every
// port, watched for what must always hold.
#include "support/Scribe.h"
#include "support/Steps.h"

#include "HistoryMaker.h"
#include "Invariants.h"
#include "Target.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace quenthisar {

namespace {

using History = std::vector<Step>;

/// What is there when an input begins.
const History& beginning() {
    static const auto steps = [] {
        History result;
        for (const auto* line : {"screen D1 0 0 1920 1080", "screen D2 1920 200 800 600",
                                 "dongle A connected", "dongle B connected", "dongle C connected",
                                 "bind left|D1 A", "bind right|D2 B", "set cornerSlam on"})
            result.push_back(Steps::parse(line).value());
        return result;
    }();
    return steps;
}

/// Tells at the end how much there was to watch: where a line begins with a 0, the invariants may
/// hold because nothing happened, and the tests fail.
struct Total {
    std::size_t steps = 0;
    Invariants::Sights seen{};

    ~Total() {
        constexpr std::array names{
            "crossings",      "other takeovers",    "chords", "pushes", "stops", "payloads",
            "typed payloads", "chords of profiles", "panels"};
        std::fprintf(stderr, "saw %zu steps\n", steps);
        for (std::size_t i = 0; i < seen.size(); ++i)
            std::fprintf(stderr, "saw %zu %s\n", seen.at(i), names.at(i));
    }
} total;

/// A text that tests/scenarios can hold: the history with what came of it.
std::string asScenario(std::span<const Step> history) {
    Scribe scribe;
    World world(scribe);
    std::string text;
    for (const auto& step : history) {
        text += Steps::text(step) + '\n';
        Steps::perform(step, world);
        const auto came = scribe.take();
        if (Steps::isArrangement(step)) continue;
        for (const auto& line : came) text += "    " + line + '\n';
    }
    return text;
}

[[noreturn]] void tell(const Violation& violation, const History& history) {
    std::fprintf(stderr, "%s\n", asScenario(history).c_str());
    fuzz::fail((std::string{violation.invariant} + ": " + violation.detail).c_str());
}

} // namespace

/// A kilobyte may save 500 profiles.
std::chrono::milliseconds fuzz::timePerKilobyte() {
    return std::chrono::milliseconds{400};
}

void fuzz::run(Bytes input) {
    static std::set<std::size_t> written; // the kinds of steps that were compared
    Invariants invariants;
    World world(invariants);
    auto history = beginning();
    for (const auto& step : history) invariants.perform(step, world);
    HistoryMaker maker(input);
    while (const auto step = maker.next(world)) {
        if (written.insert(step->command).second)
            require(Steps::parse(Steps::text(*step)) == step, "writes what can not be read");
        history.push_back(*step);
        invariants.perform(*step, world);
        if (invariants.violation) tell(*invariants.violation, history);
    }
    invariants.compareAllThatIsStored();
    if (invariants.violation) tell(*invariants.violation, history);
    total.steps += history.size();
    for (std::size_t i = 0; i < total.seen.size(); ++i) total.seen.at(i) += invariants.seen.at(i);
}

} // namespace quenthisar
