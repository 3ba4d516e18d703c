// SPDX-License-Identifier: MIT
#include "Linux/QtSerialQueue.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <vector>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// For what happens at once; far from the sleeps that it is told apart from.
constexpr auto limit = 10s;

class QtSerialQueueTest : public testing::Test {
    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    QCoreApplication application{argumentCount, list};
};

TEST_F(QtSerialQueueTest, RunsItsActionsInOrderOnAThreadOfItsOwnAndSleepsThere) {
    QtSerialQueue queue;
    std::vector<int> order;
    std::promise<Clock::duration> pause;
    for (int i = 0; i < 100; ++i) queue.async([&, i] { order.push_back(i); });
    queue.async([&, ours = std::this_thread::get_id()] {
        EXPECT_NE(std::this_thread::get_id(), ours);
        const auto before = Clock::now();
        EXPECT_TRUE(queue.sleepForTimeInterval(Seconds{0.074}));
        EXPECT_TRUE(queue.sleepForTimeInterval(Seconds{-1}));
        pause.set_value(Clock::now() - before);
    });
    auto settled = pause.get_future();
    ASSERT_EQ(settled.wait_for(limit), std::future_status::ready);
    EXPECT_GE(settled.get(), 74ms);
    EXPECT_EQ(order.size(), 100U);
    EXPECT_TRUE(std::ranges::is_sorted(order));
}

TEST_F(QtSerialQueueTest, GoesInTheMiddleOfASleepAndDropsWhatWaits) {
    auto owner = std::make_unique<QtSerialQueue>();
    auto& queue = *owner;
    std::promise<void> asleep;
    std::vector<bool> sleeps;
    std::atomic<bool> late = false;
    auto held = std::make_shared<int>(0);
    queue.async([&] {
        asleep.set_value();
        for (int i = 0; i < 2; ++i) sleeps.push_back(queue.sleepForTimeInterval(Seconds{100}));
    });
    for (int i = 0; i < 10; ++i) queue.async([&late, held] { late = true; });
    ASSERT_EQ(asleep.get_future().wait_for(limit), std::future_status::ready);
    const auto before = Clock::now();
    owner.reset();
    EXPECT_LT(Clock::now() - before, limit);
    EXPECT_EQ(sleeps, (std::vector{false, false})) << "no sleep of an action that is to end";
    EXPECT_FALSE(late);
    EXPECT_EQ(held.use_count(), 1) << "what a dropped action holds is given back";
}

} // namespace
} // namespace quenthisar
