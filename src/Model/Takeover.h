// SPDX-License-Identifier: MIT
#pragma once

#include "Model/Edge.h"
#include "Support/Uuid.h"

#include <optional>
#include <string>

namespace quenthisar {

/// The dongle that receives the host's input, and the display edge that was crossed to get there:
/// both `edge` and `screenUUID`, or neither when a hotkey or the menu started it.
struct Takeover {
    Uuid dongleID;
    std::optional<Edge> edge;
    std::optional<std::string> screenUUID;

    bool operator==(const Takeover&) const = default;
};

} // namespace quenthisar
