// SPDX-License-Identifier: MIT
#include "Support/Published.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

TEST(Published, SubscribersMayLeaveAndComeWhileTheyAreCalledAndOutliveIt) {
    int second = 0, late = 0;
    Subscription first, other, added;
    {
        Signal<> willChange;
        Published<int> field{willChange, 1, [](int) {}};
        first = field.subscribe([&](int value) {
            if (value != 2) return;
            other = {};
            added = field.subscribe([&](int) { ++late; });
        });
        other = field.subscribe([&](int) { ++second; });
        field = 2;
        EXPECT_EQ(second, 1) << "called at its subscription only";
        EXPECT_EQ(late, 1) << "called at its subscription only";
        field = 3;
        EXPECT_EQ(late, 2);
    }
    first = {};
}

} // namespace
} // namespace quenthisar
