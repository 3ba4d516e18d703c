// SPDX-License-Identifier: MIT
#include "Linux/BluezPayloadQueue.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace quenthisar {

using Report::Kind;

bool BluezPayloadQueue::push(const Payload& payload, Clock::time_point now) {
    const bool pureMotion = Report::isPureMotion(latestMouse, payload);
    pass(payload);
    entries.push_back({payload, now, pureMotion});
    if (pureMotion && ++motions > motionLimit) dropOldestMotion();
    return entries.size() - motions < otherLimit;
}

void BluezPayloadQueue::pass(const Payload& payload) {
    if (Report::isKind(Kind::mouse, payload)) latestMouse = payload;
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
        if (Report::isKind(Kind::mouse, payload)) payload = Report::atRest(payload);
        const bool isPress =
            Report::isKind(Kind::consumer, payload) && payload != Report::consumer(0);
        if (isPress) continue; // nobody wants a late press
        kept.push_front({payload, entry->since, false});
    }
    entries = std::move(kept);
    motions = static_cast<std::size_t>(std::ranges::count_if(entries, &Entry::pureMotion));
}

void BluezPayloadQueue::pop() {
    if (entries.front().pureMotion) --motions;
    entries.pop_front();
}

BluezPayloadQueue::Entry BluezPayloadQueue::take() {
    const auto entry = entries.front();
    pop();
    return entry;
}

void BluezPayloadQueue::putBack(const Entry& entry) {
    if (entry.pureMotion) ++motions;
    entries.push_front(entry);
}

void BluezPayloadQueue::clear() {
    entries.clear();
    motions = 0;
}

} // namespace quenthisar
