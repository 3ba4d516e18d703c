// SPDX-License-Identifier: MIT
#include "Support/Published.h"
#include "Support/WeakGuard.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace quenthisar {
namespace {

struct Store {
    Signal<> willChange;
    std::vector<std::string> log;
    Published<int> field{willChange, 1,
                         [this](int value) { log.push_back("set " + std::to_string(value)); }};
};

TEST(Published, AnnouncesEachAssignmentBeforeItTakesEffect) {
    Store store;
    const auto change = store.willChange.subscribe(
        [&] { store.log.push_back("will change, still " + std::to_string(*store.field)); });
    const auto stream = store.field.subscribe([&](int next) {
        store.log.push_back(std::to_string(next) + " for " + std::to_string(*store.field));
    });
    store.field = 2;
    store.field = 2;
    store.field.modify([](int& value) { ++value; });
    EXPECT_EQ(store.log,
              (std::vector<std::string>{"1 for 1", "will change, still 1", "2 for 1", "set 2",
                                        "will change, still 2", "2 for 2", "set 2",
                                        "will change, still 2", "3 for 2", "set 3"}));
}

TEST(Published, SubscribersMayLeaveAndComeWhileTheyAreCalled) {
    Store store;
    int second = 0, late = 0;
    Subscription other, added;
    const auto first = store.field.subscribe([&](int value) {
        if (value != 2) return;
        other = {};
        added = store.field.subscribe([&](int) { ++late; });
    });
    other = store.field.subscribe([&](int) { ++second; });
    store.field = 2;
    EXPECT_EQ(second, 1) << "called at its subscription only";
    EXPECT_EQ(late, 1) << "called at its subscription only";
    store.field = 3;
    EXPECT_EQ(late, 2);
}

TEST(Subscription, MayOutliveItsSignal) {
    Subscription subscription;
    {
        Store store;
        subscription = store.field.subscribe([](int) {});
    }
    subscription = {};
}

TEST(WeakGuard, SilencesCallbacksOfOwnersThatAreGone) {
    int calls = 0;
    auto guard = std::make_unique<WeakGuard>();
    auto callback = guard->bind([&](int by) { calls += by; });
    callback(2);
    guard.reset();
    callback(2);
    EXPECT_EQ(calls, 2);
}

} // namespace
} // namespace quenthisar
