// SPDX-License-Identifier: MIT
#include "unit/AppDelegateFixture.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

using namespace std::chrono_literals;
using Fixture = AppDelegateFixture;

TEST(AppDelegate, CapturesOnceTrustIsGrantedAndNeverAgainByItself) {
    Fixture f;
    f.trust.trusted = false;
    f.launch();
    f.clock.advance(5s);
    EXPECT_FALSE(f.captures());
    EXPECT_EQ(f.trust.prompts, 0) << "only a person's request prompts";
    f.trust.trusted = true;
    f.clock.advance(999ms);
    EXPECT_FALSE(f.captures());
    f.clock.advance(1ms);
    EXPECT_TRUE(f.captures());
    EXPECT_TRUE(*f.state().axTrusted);
    f.delegate->eventTap->stop();
    f.clock.advance(10s);
    EXPECT_FALSE(f.captures());
    f.trust.trusted = false;
    f.clock.advance(1s);
    EXPECT_FALSE(*f.state().axTrusted);
}

} // namespace
} // namespace quenthisar
