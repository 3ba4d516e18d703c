// SPDX-License-Identifier: MIT
#pragma once

#include "demo/DeskLines.h"
#include "demo/ReportLine.h"
#include "demo/SelectionOwner.h"
#include "demo/Stage.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quenthisar::e2e {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using demo::ReportLine;
using demo::waitUntil;

/// How long something may take that happens at once; generous, for a busy machine.
constexpr auto soon = 20s;

/// By how much sanitizers prolong what has a limit.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int sanitizerFactor = 5;
#else
constexpr int sanitizerFactor = 1;
#endif

/// How the virtual dongle calls the only one and its adapter.
inline const QString firstDongle = u""_s, firstAdapter = u"hci0"_s;

inline constexpr std::uint32_t shiftKey = 0xFFE1;

/// All of it; null where there is none.
QByteArray readFile(const QString& file);

/// A stage of its own for each test, in a takeover when the test begins.
class StageFixture : public testing::Test {
protected:
    using Held = demo::XClient::Held;
    using Reports = QList<ReportLine>;

    void SetUp() override { enter({}); }
    void TearDown() override;

    void enter(const demo::Stage::Options& options);
    /// The program at its start, after `prepare`, if any.
    void start(const demo::Stage::Options& options, const std::function<void()>& prepare = {});
    /// Everything but the program. Throws std::runtime_error.
    void build(demo::Stage::Options options);
    /// From here on, the functions below look at what comes.
    void markNow();

    QString typedOnTarget() {
        return demo::DeskLines::typedText(stage->targetDesk.since(targetMark));
    }
    bool targetGets(const QString& line) {
        return stage->targetDesk.waitFor(
            targetMark, [&](const QStringList& lines) { return lines.contains(line); }, soon);
    }
    bool targetGetsText(const QString& text) {
        return waitUntil([&] { return typedOnTarget() == text; }, soon);
    }
    /// What is typed at the host arrives there, and nowhere else.
    void expectTyped(const QString& text);
    void expectTypedOnHost(const QString& text);

    Reports reports() { return demo::reportLines(stage->rig.dongle().since(dongleMark)); }
    bool dongleGets(const std::function<bool(const Reports&)>& wanted) {
        return waitUntil([&] { return wanted(reports()); }, soon);
    }
    bool dongleGetsAny(const std::function<bool(const ReportLine&)>& wanted) {
        return dongleGets([&](const Reports& all) { return std::ranges::any_of(all, wanted); });
    }

    /// Keys, buttons, motion and scrolling that the host's focused client got.
    QStringList inputOnHost();

    void hold(const Held& held, bool down) const;
    bool targetHolds(const Held& wanted) {
        return waitUntil([&] { return stage->target.held() == wanted; }, soon);
    }
    bool nothingIsHeldOnTarget() { return targetHolds({}); }
    /// A key and a button.
    Held some() const { return {.keys = {keyCode(u'k')}, .buttons = {3}}; }
    void holdSome() {
        hold(some(), true);
        ASSERT_TRUE(targetHolds(some()));
    }

    /// The input is the host's, all of it, and the target holds nothing.
    void expectHostHasInput();
    /// The takeover is on: what is typed at the host arrives at the target only, until the chord.
    void expectTakeover();

    /// In a takeover: how long it is from the return chord to the first motion of the pointer.
    std::chrono::milliseconds timeOfReturn() const;

    std::uint8_t keyCode(char16_t character) const;
    std::uint8_t keyCodeOf(std::uint32_t symbol) const {
        return stage->host.keyCodeOf(symbol).value_or(0);
    }
    /// The chord with one more key.
    void pressHotkey(char16_t key, bool shifted = false) const;

    /// Asks the virtual dongle for a fault (see dongle/README.md), and returns when it is done.
    void ask(const QString& method, const QVariantList& arguments = {}) const;
    /// Waits for a line of the dongle since the mark that ends in `event`; the time it gives.
    std::optional<std::chrono::microseconds> waitForEvent(const QString& event);
    /// The link is up, and the pairing probe answered.
    bool isReady() { return waitForEvent(u"answer ok"_s).has_value(); }

    std::unique_ptr<demo::Stage> stage;
    qsizetype hostMark = 0, targetMark = 0, dongleMark = 0;
};

} // namespace quenthisar::e2e
