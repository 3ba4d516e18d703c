// SPDX-License-Identifier: MIT
#include "Linux/BluezPayloadQueue.h"

#include <gtest/gtest.h>

#include <vector>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;
using Payloads = std::vector<Payload>;

const BluezPayloadQueue::Clock::time_point start{100s};

Payload key(std::uint8_t usage) {
    return Report::keyboard(0, std::vector{usage});
}

Payloads drained(BluezPayloadQueue& queue) {
    Payloads result;
    for (; !queue.empty(); queue.pop()) result.push_back(queue.front());
    return result;
}

TEST(BluezPayloadQueue, DropsTheOldestPureMotionAndNothingElse) {
    const Payloads kept{Report::mouse({.dx = -7680}), // the slam
                        Report::mouse({.wheel = 1}),
                        Report::mouse({.buttons = 1}), // presses
                        key(4),
                        Report::mouse({.buttons = 0, .dx = 3}), // releases
                        Report::consumer(0xE9)};
    BluezPayloadQueue queue;
    std::uint8_t buttons = 0;
    for (const auto& payload : kept) {
        if (payload[0] == 2) buttons = payload[2];
        EXPECT_TRUE(queue.push(payload, start));
        EXPECT_TRUE(queue.push(Report::mouse({.buttons = buttons, .dx = 1}), start));
    }
    auto expected = kept;
    for (int dx = 0; dx < 64; ++dx) {
        EXPECT_TRUE(queue.push(Report::mouse({.dx = 100 + dx}), start));
        expected.push_back(Report::mouse({.dx = 100 + dx}));
    }
    EXPECT_EQ(drained(queue), expected);
}

TEST(BluezPayloadQueue, KeepsOnlyTheStateOfWhatIsStale) {
    BluezPayloadQueue queue;
    const Payloads stale{key(4),
                         Report::mouse({.buttons = 1, .dx = 9, .wheel = 2}),
                         Report::consumer(0xE9),
                         key(5),
                         Report::consumer(0),
                         Report::mouse({.buttons = 1, .dx = 9})};
    for (const auto& payload : stale) EXPECT_TRUE(queue.push(payload, start));
    const Payloads fresh{Report::mouse({.buttons = 1, .dx = 2}), Report::allKeysUp()};
    for (const auto& payload : fresh) EXPECT_TRUE(queue.push(payload, start + 1s));

    queue.dropStale(start + 2001ms);
    EXPECT_EQ(drained(queue), (Payloads{key(5), Report::consumer(0), Report::mouse({.buttons = 1}),
                                        fresh[0], fresh[1]}));

    EXPECT_TRUE(queue.push(Report::consumer(0xE9), start));
    queue.dropStale(start + 2s);
    EXPECT_FALSE(queue.empty());
    queue.dropStale(start + 2001ms);
    EXPECT_TRUE(queue.empty()); // nobody wants a late press
}

} // namespace
} // namespace quenthisar
