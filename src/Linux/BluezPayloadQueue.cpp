// SPDX-License-Identifier: MIT
#include "Linux/BluezPayloadQueue.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace quenthisar {

namespace {

using Report::Kind;

constexpr int slamMagnitude = 7680; // the takeover's move into a corner, which must arrive

bool isKind(const Payload& payload, Kind kind) {
    return payload[0] == static_cast<std::uint8_t>(kind);
}

std::uint8_t buttons(const Payload& mouse) {
    return mouse[2];
}

int field(const Payload& payload, std::size_t at) {
    return static_cast<std::int16_t>(payload[at] << 8 | payload[at + 1]);
}

bool movesOnly(const Payload& mouse) {
    const int dx = field(mouse, 3), dy = field(mouse, 5), wheel = field(mouse, 7);
    return wheel == 0 && std::abs(dx) < slamMagnitude && std::abs(dy) < slamMagnitude;
}

} // namespace

bool BluezPayloadQueue::push(const Payload& payload, Clock::time_point now) {
    bool pureMotion = false;
    if (isKind(payload, Kind::mouse)) {
        pureMotion = buttons(payload) == latestButtons && movesOnly(payload);
        latestButtons = buttons(payload);
    }
    entries.push_back({payload, now, pureMotion});
    if (pureMotion && ++motions > motionLimit) dropOldestMotion();
    return entries.size() - motions < otherLimit;
}

void BluezPayloadQueue::dropOldestMotion() {
    entries.erase(std::ranges::find_if(entries, &Entry::pureMotion));
    --motions;
}

void BluezPayloadQueue::dropStale(Clock::time_point now) {
    const auto fresh = std::ranges::find_if(
        entries, [now](const Entry& entry) { return now - entry.since <= staleAge; });
    if (fresh == entries.begin()) return;

    // Walking back from the newest stale one, the first of each kind is the state.
    std::array<bool, 5> seen{};
    std::deque<Entry> kept(fresh, entries.end());
    for (auto entry = std::make_reverse_iterator(fresh); entry != entries.rend(); ++entry) {
        auto& payload = entry->payload;
        if (payload[0] >= seen.size() || std::exchange(seen[payload[0]], true)) continue;
        if (isKind(payload, Kind::mouse)) {
            payload = Report::mouse({.buttons = buttons(payload)});
        } else if (isKind(payload, Kind::consumer) && payload != Report::consumer(0)) {
            continue;
        }
        kept.push_front({payload, entry->since, false});
    }
    entries = std::move(kept);
    motions = static_cast<std::size_t>(std::ranges::count_if(entries, &Entry::pureMotion));
}

void BluezPayloadQueue::pop() {
    if (entries.front().pureMotion) --motions;
    entries.pop_front();
}

void BluezPayloadQueue::clear() {
    entries.clear();
    motions = 0;
}

} // namespace quenthisar
