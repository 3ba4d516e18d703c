// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

#include <memory>
#include <vector>

namespace quenthisar::e2e {

namespace {

using Programs = std::vector<std::unique_ptr<demo::ChildProcess>>;

auto runningAmong(const Programs& programs) {
    return std::ranges::count_if(programs, [](const auto& each) { return each->isRunning(); });
}

} // namespace

/// The program is started while it runs, in the middle of a takeover.
using SecondStart = StageFixture;

TEST_F(SecondStart, EndsAndTheFirstGoesOn) {
    EXPECT_EQ(stage->rig.startOnceMore()->waitForEnd(soon), 0);
    EXPECT_TRUE(stage->rig.quenthisar().isRunning());
    ASSERT_TRUE(stage->hands.type(QStringLiteral("Still"), 0ms));
    EXPECT_TRUE(targetGetsText(QStringLiteral("Still")));
}

TEST_F(SecondStart, LeavesExactlyOneOfTwentyAtOnce) {
    stage->rig.endProgram();
    Programs programs;
    for (int i = 0; i < 20; ++i) programs.push_back(stage->rig.startOnceMore());
    EXPECT_TRUE(waitUntil([&] { return runningAmong(programs) == 1; }, soon));
    ASSERT_TRUE(stage->cross(soon)) << "the one that is left works";
    EXPECT_EQ(runningAmong(programs), 1);
    for (const auto& each : programs) EXPECT_EQ(each->waitForEnd(0ms).value_or(0), 0);
}

} // namespace quenthisar::e2e
