// SPDX-License-Identifier: MIT
#pragma once

#include "scenarios/Invariants.h"
#include "support/Steps.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace quenthisar {

using History = std::vector<Step>;

/// Makes up what happens next, by what is going on. The same seed and world give the same steps.
class HistoryMaker {
public:
    explicit HistoryMaker(std::uint64_t seed) : random(seed) {}

    Step next(World& world);

private:
    Step localInput(World& world);
    Step remoteInput();
    Step anyInput();
    Step shell(World& world);
    Step edit(World& world);
    Step air();
    Step moveToAnEdge(World& world);

    std::size_t below(std::size_t limit) { return random() % limit; }
    bool chance(std::size_t percent) { return below(100) < percent; }
    double between(int low, int high) {
        return low + static_cast<double>(below(static_cast<std::size_t>(high - low) + 1));
    }
    double dongle() { return static_cast<double>(below(3)); }
    std::string bindingPlace();
    std::string chordText();
    std::string profileName() { return "P" + std::to_string(below(4)); }

    std::mt19937_64 random;
    std::deque<Step> planned;
    std::vector<double> held; // key codes
};

/// What a history breaks first, and the step that does it.
struct Breach {
    Violation violation;
    std::size_t at = 0;
};

std::optional<Breach> breachOf(std::span<const Step> history,
                               Invariants::Target target = Invariants::Target::sound);

struct Life {
    History steps;
    std::optional<Breach> breach; // by the last step
    Invariants::Sights seen;
};

/// Makes a history of this length and lives it at the same time, as far as it breaks nothing.
Life live(std::uint64_t seed, std::size_t length,
          Invariants::Target target = Invariants::Target::sound);

/// The smallest history that still breaks the same: taking any step away mends it.
History shrunk(History history, std::string_view broken,
               Invariants::Target target = Invariants::Target::sound);

/// A scenario with what came of it.
std::string asScenario(std::span<const Step> history);

} // namespace quenthisar
