// SPDX-License-Identifier: MIT
#include "unit/TakeoverFixture.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;

TEST(DongleManager, NamesADongleAsItCallsItselfElseAsItAdvertises) {
    TakeoverFixture f;
    const auto known = f.dongles[A];
    f.central.discover(known, {.localName = "Advertised"});
    EXPECT_EQ(f.state.dongle(A)->name, "Zandrovelkin BLE");
    known->peripheralName = std::nullopt;
    f.central.discover(known, {.localName = "Advertised"});
    EXPECT_EQ(f.state.dongle(A)->name, "Advertised");
    f.central.discover(known);
    EXPECT_EQ(f.state.dongle(A)->name, "Zandrovelkin");
}

TEST(DongleManager, ConnectsAnewWhatIsWantedAgainWhileItsAttemptIsBeingCancelled) {
    TakeoverFixture f;
    f.state.autoConnect = true;
    f.bind(A, Edge::left);
    f.manager.disconnect(A);
    f.clock.settle();
    f.central.attempts.clear();
    f.dongles[A]->answersConnect = false;
    f.manager.connect(A);
    f.manager.disconnect(A);
    f.manager.connect(A);
    f.clock.advance(999ms);
    EXPECT_EQ(f.central.attempts, Ids{A}) << "it was in flight: nothing was queued";
    f.clock.advance(1ms);
    EXPECT_EQ(f.central.attempts, (Ids{A, A})) << "a drop like any other";
}

} // namespace
} // namespace quenthisar
