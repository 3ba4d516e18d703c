// SPDX-License-Identifier: MIT
#pragma once

#include "Support/Uuid.h"
#include "UI/Palette.h"

#include <optional>
#include <string>

namespace quenthisar {

/// One line of a picker.
struct Offer {
    std::optional<Uuid> id; // what choosing it sets
    std::string title;      // UTF-8
    std::optional<NamedColor> color{};
    /// False for what is set but can't be chosen: a dongle that nobody has seen yet.
    bool isAvailable = true;

    bool operator==(const Offer&) const = default;
};

} // namespace quenthisar
