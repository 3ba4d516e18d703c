// SPDX-License-Identifier: MIT
// Lives random histories and watches what must always hold. For a longer run, or, with 2000 events
// and its seed, the one history that failed:
//   QUENTHISAR_EVENTS=1000000 QUENTHISAR_SEED=7 scenario-tests --gtest_filter='RandomHistories.*'
#include "scenarios/RandomHistory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

namespace quenthisar {
namespace {

// A history is as long as shrinking it stays quick.
constexpr std::size_t length = 2'000;

std::uint64_t fromEnvironment(const char* name, std::uint64_t otherwise) {
    const char* text = std::getenv(name);
    return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

TEST(RandomHistories, KeepEveryInvariant) {
    const auto events = fromEnvironment("QUENTHISAR_EVENTS", 200'000);
    const auto first = fromEnvironment("QUENTHISAR_SEED", 1);
    Invariants::Sights seen{};
    for (auto seed = first; seed < first + events / length; ++seed) {
        const auto life = live(seed, length);
        for (std::size_t i = 0; i < seen.size(); ++i) seen.at(i) += life.seen.at(i);
        if (!life.breach) continue;
        const auto& violation = life.breach->violation;
        const auto smallest = shrunk(life.steps, violation.invariant);
        const auto why = breachOf(smallest);
        FAIL() << "seed " << seed << ", step " << life.breach->at << ": " << violation.invariant
               << ": " << (why ? why->violation : violation).detail << '\n'
               << asScenario(smallest);
    }
    // Or the invariants had nothing to watch.
    const std::pair<const char*, std::size_t> leastOneIn[] = {
        {"crossings", 400},      {"other takeovers", 1'000},
        {"chords", 1'000},       {"pushes", 4'000},
        {"stops", 4'000},        {"payloads", 4},
        {"typed payloads", 400}, {"chords of profiles", 20'000},
        {"panels", 400}};
    for (std::size_t i = 0; i < seen.size(); ++i) {
        const auto& [name, few] = leastOneIn[i];
        std::cout << seen.at(i) << ' ' << name << '\n';
        if (events >= 100'000) {
            EXPECT_GT(seen.at(i), events / few) << name;
        }
    }
}

TEST(RandomHistories, AFaultIsShrunkToTheScenarioThatShowsIt) {
    constexpr auto faulty = Invariants::Target::deafToButtonRelease;
    const auto life = live(1, 20 * length, faulty);
    ASSERT_TRUE(life.breach);
    EXPECT_EQ(life.breach->violation.invariant, Invariant::nothingIsHeldAfterAReturn);
    const auto smallest = shrunk(life.steps, life.breach->violation.invariant, faulty);
    // A dongle, a takeover, a button, and the return, which may take three keys.
    EXPECT_LE(smallest.size(), 6U) << asScenario(smallest);
    EXPECT_NE(asScenario(smallest).find("\ndown "), std::string::npos);
}

TEST(RandomHistories, EveryStepReadsBackAsItWasWritten) {
    for (const auto& step : live(3, length).steps)
        EXPECT_EQ(Steps::parse(Steps::text(step)), step) << Steps::text(step);
}

} // namespace
} // namespace quenthisar
