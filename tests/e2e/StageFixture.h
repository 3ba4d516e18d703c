// SPDX-License-Identifier: MIT
#pragma once

#include "demo/DeskLines.h"
#include "demo/ReportLine.h"
#include "demo/RuntimeFolder.h"
#include "demo/Stage.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace quenthisar::e2e {

using namespace std::chrono_literals;
using demo::ReportLine;
using demo::waitUntil;

/// How long something may take that happens at once; generous, for a busy machine.
constexpr auto atOnce = 10s;
constexpr auto soon = 20s;

/// By how much sanitizers prolong what has a limit.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int sanitizerFactor = 5;
#else
constexpr int sanitizerFactor = 1;
#endif

/// A stage of its own for each test, in a takeover when the test begins.
class StageFixture : public testing::Test {
protected:
    void SetUp() override { enter({}); }

    void TearDown() override {
        if (!stage) return;
        const auto all = demo::reportLines(stage->rig.dongle().since(0));
        EXPECT_TRUE(std::ranges::none_of(all, &ReportLine::isMalformed));
        EXPECT_TRUE(std::ranges::all_of(all, [](const ReportLine& line) {
            return line.isRequest == line.isProbe();
        })) << "the probe, and only it, is written as a request";
    }

    void enter(const demo::Stage::Options& options) {
        ASSERT_NO_FATAL_FAILURE(start(options));
        ASSERT_TRUE(stage->cross(soon)) << "crossing the edge does not take over";
        markNow();
    }

    /// The program at its start, after `prepare`, if any.
    void start(const demo::Stage::Options& options, const std::function<void()>& prepare = {}) {
        // What goes wrong here is this test's failure, not the end of the program.
        try {
            build(options);
            if (prepare) prepare();
            stage->rig.startProgram();
        } catch (const std::exception& error) {
            FAIL() << error.what();
        }
    }

    /// Everything but the program.
    void build(demo::Stage::Options options) {
        demo::provideRuntimeFolder();
        if (options.programs.quenthisar.isEmpty())
            options.programs = demo::Programs::in(QStringLiteral(QUENTHISAR_PROGRAMS));
        stage = std::make_unique<demo::Stage>(options);
    }

    /// From here on, the functions below look at what comes.
    void markNow() {
        ASSERT_TRUE(stage->hostDesk.catchUp(stage->host));
        ASSERT_TRUE(stage->targetDesk.catchUp(stage->target));
        hostMark = stage->hostDesk.mark();
        targetMark = stage->targetDesk.mark();
        dongleMark = stage->rig.dongle().mark();
    }

    QString typedOnHost() { return demo::DeskLines::typedText(stage->hostDesk.since(hostMark)); }
    QString typedOnTarget() {
        return demo::DeskLines::typedText(stage->targetDesk.since(targetMark));
    }

    bool targetGets(const QString& line) {
        return stage->targetDesk.waitFor(
            targetMark, [&](const QStringList& lines) { return lines.contains(line); }, soon);
    }

    bool targetGetsText(const QString& text) {
        const auto isThere = [&](const QStringList& lines) {
            return demo::DeskLines::typedText(lines) == text;
        };
        return stage->targetDesk.waitFor(targetMark, isThere, soon);
    }

    QList<ReportLine> reports() { return demo::reportLines(stage->rig.dongle().since(dongleMark)); }

    bool dongleGets(const std::function<bool(const QList<ReportLine>&)>& wanted) {
        return waitUntil([&] { return wanted(reports()); }, soon);
    }

    /// Keys, buttons, motion and scrolling that the host's focused client got.
    QStringList inputOnHost() {
        EXPECT_TRUE(stage->hostDesk.catchUp(stage->host));
        auto lines = stage->hostDesk.since(hostMark);
        lines.removeIf([](const QString& line) { return !demo::DeskLines::isInput(line); });
        return lines;
    }

    bool nothingIsHeldOnTarget() {
        return waitUntil([&] { return stage->target.held() == demo::XClient::Held{}; }, atOnce);
    }

    bool targetHolds(const demo::XClient::Held& wanted) {
        return waitUntil([&] { return stage->target.held() == wanted; }, soon);
    }

    /// The takeover is on: what is typed at the host arrives at the target only, until the chord.
    void expectTakeover() {
        // Only once the input is held is it safe to type.
        ASSERT_TRUE(waitUntil([&] { return !stage->hostShowsCursor(); }, soon));
        markNow();
        ASSERT_TRUE(stage->hands.type(QStringLiteral("On again"), 0ms));
        EXPECT_TRUE(targetGetsText(QStringLiteral("On again")));
        EXPECT_EQ(inputOnHost(), QStringList{});
        stage->pressReturnChord();
        EXPECT_TRUE(stage->hostPointerMoves(soon));
        EXPECT_TRUE(stage->hostKeyboardWorks(soon));
        EXPECT_TRUE(nothingIsHeldOnTarget());
    }

    std::uint8_t keyCode(char16_t character) const {
        const auto stroke = stage->host.strokeFor(character);
        EXPECT_TRUE(stroke);
        return stroke ? stroke->keyCode : std::uint8_t{0};
    }

    std::unique_ptr<demo::Stage> stage;
    qsizetype hostMark = 0, targetMark = 0, dongleMark = 0;
};

} // namespace quenthisar::e2e
