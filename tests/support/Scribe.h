// SPDX-License-Identifier: MIT
#pragma once

#include "support/World.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace quenthisar {

/// Writes down what comes of each line of a scenario: the fate of the input, then the rest in
/// order.
class Scribe final : public Witness {
public:
    void posted(const TapEvent&, TapVerdict verdict) override {
        lines.insert(lines.begin(), verdict == TapVerdict::swallow ? "swallowed" : "passed on");
    }

    void wrote(const Write& write) override {
        auto line = World::dongleName(write.id) + "  ";
        if (write.type == WriteType::withResponse && write.payload == Report::pairingProbe) {
            lines.push_back(line + "probe");
            return;
        }
        constexpr std::string_view digits = "0123456789ABCDEF";
        for (const auto byte : write.payload) {
            line += digits[byte >> 4];
            line += digits[byte & 15];
            line += ' ';
        }
        line.pop_back();
        lines.push_back(write.type == WriteType::withResponse ? line + " as a request" : line);
    }

    void happened(const std::string& line) override { lines.push_back(line); }

    std::vector<std::string> take() { return std::exchange(lines, {}); }

private:
    std::vector<std::string> lines;
};

} // namespace quenthisar
