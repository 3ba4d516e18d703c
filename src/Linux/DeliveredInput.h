// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/EventTap.h"

#include <cstdint>
#include <vector>

namespace quenthisar {

/// What a takeover's events have left down, as their receiver knows it. When the input goes to
/// somebody else in the middle of it, nobody would deliver the releases.
class DeliveredInput {
public:
    /// A takeover begins: nothing is down but the modifiers of `flags`, which were not delivered.
    void begin(std::uint64_t flags);
    /// To be called with every event before it is delivered.
    void note(const TapEvent& event);

    /// The events after which nothing is down but the modifiers of `flags`. They are to be noted
    /// and delivered as all others.
    std::vector<TapEvent> releases(std::uint64_t flags) const;
    /// Those among them that let go of media keys.
    std::vector<TapEvent> mediaReleases(std::uint64_t flags) const;

private:
    std::vector<std::int64_t> keys, mediaKeys; // in the order in which they went down
    bool left = false, right = false, other = false;
    std::uint64_t modifiers = 0;
};

} // namespace quenthisar
