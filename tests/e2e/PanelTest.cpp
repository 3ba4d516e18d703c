// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"
#include "linux/PanelWatch.h"

namespace quenthisar::e2e {

namespace {

/// Opacities of a fade. Sanitizers take so much time that fewer are seen; a jump has two at most.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t steps = 4;
#else
constexpr std::size_t steps = 8;
#endif

} // namespace

using test::PanelWatch;

class PanelOfATakeover : public StageFixture {
protected:
    /// Returns and takes over once more: that of the start may be gone again. Nothing here keeps
    /// from watching the panel for long.
    bool showAgain(PanelWatch& watch) {
        stage->pressReturnChord();
        if (!waitUntil([&] { return watch.panels().empty(); }, soon)) return false;
        watch.forget();
        const auto attempt = [&] {
            const auto isShown = [&] { return !watch.fades().empty(); };
            const auto before = stage->host.pointer();
            stage->hands.moveBy({-60, 0});
            waitUntil([&] { return stage->host.pointer() != before || isShown(); }, 100ms);
            stage->hands.moveBy({80, 0});
            stage->hands.moveBy({0, 1});
            return waitUntil(isShown, 150ms);
        };
        return demo::retry(attempt, soon);
    }
};

TEST_F(PanelOfATakeover, ShowsInsideTheCrossedEdgeAndIsInNobodysWay) {
    PanelWatch watch{stage->host};
    ASSERT_TRUE(showAgain(watch));
    ASSERT_TRUE(waitUntil(
        [&] {
            const auto& all = watch.fades();
            return !all.empty() && all.begin()->second.isOpaque();
        },
        soon));
    const auto panel = watch.fades().begin()->first;
    const auto frame = watch.frame(panel);
    constexpr int width = 1280, height = 800, margin = 12; // of the stage's displays
    EXPECT_EQ(frame.left(),
              std::min(width - 120 - frame.width() / 2, width - frame.width() - margin));
    EXPECT_NEAR(frame.center().y(), height / 2, 1);
    EXPECT_TRUE(waitUntil([&] { return !watch.takesInput(panel); }, atOnce));
    // The dot, and the ground beside it.
    const auto picture = stage->host.picture();
    const auto middle = frame.center().y();
    EXPECT_GT(picture.pixelColor(frame.left() + 8 + 24 + 7, middle).hsvSaturation(), 100);
    EXPECT_LT(picture.pixelColor(frame.left() + 8 + 8, middle).hsvSaturation(), 20);

    // The desk keeps the focus, so what is typed after the return arrives there.
    stage->pressReturnChord();
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    EXPECT_TRUE(waitUntil([&] { return watch.panels().empty(); }, soon));
}

TEST_F(PanelOfATakeover, FadesInManyStepsAndGoesByItself) {
    PanelWatch watch{stage->host};
    PanelWatch::Fades best;
    // A busy machine may leave out some; a jump would be one, however often it is tried.
    for (int attempt = 0; attempt < 5 && (best.in.size() < steps || best.out.size() < steps);
         ++attempt) {
        ASSERT_TRUE(showAgain(watch));
        const auto isGone = [&] {
            const auto& all = watch.fades();
            return !all.empty() && all.begin()->second.isOver;
        };
        ASSERT_TRUE(waitUntil(isGone, soon));
        const auto& fade = watch.fades().begin()->second;
        if (best.in.size() < fade.in.size()) best.in = fade.in;
        if (best.out.size() < fade.out.size()) best.out = fade.out;
    }
    EXPECT_GE(best.in.size(), steps);
    EXPECT_GE(best.out.size(), steps);
}

} // namespace quenthisar::e2e
