// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

namespace quenthisar::e2e {

class HotkeysOfATakeover : public StageFixture {
protected:
    void press(const QList<std::uint8_t>& keys) {
        for (const auto key : keys) stage->hands.key(key, true);
    }
    void release(const QList<std::uint8_t>& keys) {
        for (const auto key : keys) stage->hands.key(key, false);
    }
};

TEST_F(HotkeysOfATakeover, ReturnWithTheChordThenActAndReturnWhereShiftGoesFirst) {
    const auto chord = demo::returnChord(stage->host);
    const auto shift = stage->host.keyCodeOf(0xFFE1), one = stage->host.keyCodeOf('1');
    ASSERT_TRUE(chord.size() == 3 && shift && one);
    const auto isBack = [](const QList<ReportLine>& all) {
        return std::ranges::any_of(
            all, [](const ReportLine& line) { return line.isKeyboard() && line.isAllUp(); });
    };
    // The chord returns, and the digit takes over again.
    press(chord);
    ASSERT_TRUE(dongleGets(isBack));
    EXPECT_TRUE(stage->hostPointerMoves(soon));
    markNow();
    press({*shift, *one});
    release({*one});
    // Without the chord being down alone meanwhile.
    release(chord);
    release({*shift});
    ASSERT_TRUE(waitUntil(
        [&] {
            stage->hands.moveBy({1, 0});
            return std::ranges::any_of(reports(), &ReportLine::isMouse);
        },
        soon));
    expectTakeover(); // and returns

    markNow();
    press(chord);
    press({*shift, *one});
    ASSERT_TRUE(waitUntil(
        [&] {
            stage->hands.moveBy({1, 0});
            return std::ranges::any_of(reports(), &ReportLine::isMouse);
        },
        soon));
    markNow();
    release({*shift});
    EXPECT_TRUE(dongleGets(isBack));
    release({*one});
    release(chord);
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    EXPECT_TRUE(nothingIsHeldOnTarget());
}

} // namespace quenthisar::e2e
