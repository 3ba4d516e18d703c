// SPDX-License-Identifier: MIT
#pragma once

#include "support/Steps.h"

#include "Target.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace quenthisar {

/// Makes steps of bytes: the first one says what happens next, one to three after it where and how
/// far. Each deed has its letter, so that seeds can be written and read; any other byte stands for
/// one of them, too. A byte that comes or goes changes little of what follows.
class HistoryMaker {
public:
    explicit HistoryMaker(fuzz::Bytes input) : bytes(input) {}

    /// None when the bytes are used up.
    std::optional<Step> next(World& world);

private:
    struct Deeds;

    // In all of these a '0' is the first or the lowest.
    std::size_t below(std::size_t limit) { return bytes.number(limit); }
    double upTo(std::size_t last) { return static_cast<double>(below(last + 1)); }
    double dongle() { return upTo(2); }
    double key();
    /// -128 to 127; none for a '0'.
    double small();
    /// 0 to 1.
    double part() { return upTo(64) / 64; }
    std::string bindingPlace();
    std::string chordText();
    std::string profileName() { return "P" + std::to_string(below(4)); }

    Step moveToAnEdge(World& world);
    Step release();
    Step pushBack();
    Step returnChord();
    Step hotkey();
    Step copy();

    /// Some of these keys come up, later on.
    void planRelease(const std::vector<double>& pressed);

    fuzz::Reader bytes;
    std::deque<Step> planned;
    std::vector<double> held; // key codes
};

} // namespace quenthisar
