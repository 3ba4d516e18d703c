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

/// Waits until all that was queued before has run.
bool settle(QtSerialQueue& queue) {
    auto done = std::make_shared<std::promise<void>>();
    queue.async([done] { done->set_value(); });
    return done->get_future().wait_for(limit) == std::future_status::ready;
}

TEST_F(QtSerialQueueTest, RunsItsActionsInOrderOnOneThreadOfItsOwn) {
    QtSerialQueue queue;
    std::vector<int> order;
    std::vector<std::thread::id> threads;
    for (int i = 0; i < 100; ++i)
        queue.async([&, i] {
            order.push_back(i);
            threads.push_back(std::this_thread::get_id());
            if (i == 0) queue.async([&] { order.push_back(100); });
        });
    ASSERT_TRUE(settle(queue) && settle(queue));
    ASSERT_EQ(order.size(), 101U);
    EXPECT_TRUE(std::ranges::is_sorted(order)) << "an action of an action comes after all before";
    EXPECT_EQ(std::ranges::count(threads, threads.front()), 100);
    EXPECT_NE(threads.front(), std::this_thread::get_id());
}

TEST_F(QtSerialQueueTest, SleepsAtLeastAsLongAsAsked) {
    QtSerialQueue queue;
    std::vector<std::chrono::duration<double>> pauses;
    queue.async([&] {
        for (int i = 0; i < 5; ++i) {
            const auto before = Clock::now();
            EXPECT_TRUE(queue.sleepForTimeInterval(Seconds{0.074}));
            pauses.emplace_back(Clock::now() - before);
        }
        EXPECT_TRUE(queue.sleepForTimeInterval(Seconds{-1}));
    });
    ASSERT_TRUE(settle(queue));
    ASSERT_EQ(pauses.size(), 5U);
    EXPECT_GE(std::ranges::min(pauses), 74ms);
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
