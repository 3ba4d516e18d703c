// SPDX-License-Identifier: MIT
#pragma once

#include "support/World.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quenthisar {

/// One line of a scenario: a thing that happens, as a value that runs without being read again.
struct Step {
    std::size_t command = 0;            // a row of the table of commands
    std::array<double, 4> numbers{};    // what stands for the command's placeholders, in order
    std::array<std::string, 2> texts{}; // the same for TEXT

    bool operator==(const Step&) const = default;
};

namespace Steps {

/// None for a line that is no command.
std::optional<Step> parse(std::string_view line);

/// The line; the reverse of `parse`.
std::string text(const Step& step);

/// Does it, and all that is then due at once.
void perform(const Step& step, World& world);

/// A line that sets the stage: what comes of it is not shown.
bool isArrangement(const Step& step);

/// The row of a command by its pattern, such as "move NUMBER NUMBER". There must be one.
std::size_t command(std::string_view pattern);

} // namespace Steps
} // namespace quenthisar
