// SPDX-License-Identifier: MIT
#include "demo/Binding.h"
#include "e2e/Accessible.h"
#include "e2e/FaultFixture.h"
#include "e2e/ProfileSettings.h"

namespace quenthisar::e2e {

namespace {

constexpr int dongles = 50, columns = 10, rows = 5, profiles = 200;

/// What nobody takes for a delay yet.
constexpr auto answerLimit = 200ms * sanitizerFactor, keyLimit = 10ms * sanitizerFactor;

std::chrono::microseconds now() {
    return std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

template <class Duration>
Duration middleOf(std::vector<Duration> all) {
    std::ranges::nth_element(all, all.begin() + std::ssize(all) / 2);
    return all[all.size() / 2];
}

} // namespace

/// The program among 50 dongles, on 50 displays, with 200 profiles, its window open.
class Many : public FaultFixture {
protected:
    void SetUp() override {
        try {
            build({.programs = {}, .isAccessible = true, .otherDongles = dongles - 1});
            prepare();
        } catch (const std::exception& error) {
            FAIL() << error.what();
        }
        admitFaults();
        stage->rig.openProgram();
        desktop.emplace(stage->rig.sessionBusAddress());
        ASSERT_TRUE(isReady());
        const auto areListed = [this] {
            const auto lines = stage->rig.dongle().since(0);
            return lines.filter(QStringLiteral("\" discovered")).size() == dongles;
        };
        ASSERT_TRUE(waitUntil(areListed, soon));
    }

    void prepare() {
        const int width = 1280 / columns, height = 800 / rows;
        QStringList arguments;
        for (int i = 0; i < columns * rows; ++i)
            arguments += {QStringLiteral("--setmonitor"), QStringLiteral("M%1").arg(i),
                          QStringLiteral("%1/40x%2/50+%3+%4")
                              .arg(width)
                              .arg(height)
                              .arg(i % columns * width)
                              .arg(i / columns * height),
                          i == 0 ? QStringLiteral("screen") : QStringLiteral("none")};
        demo::ChildProcess xrandr(QStringLiteral("xrandr"), arguments,
                                  {{QStringLiteral("DISPLAY"), stage->hostDisplay()}});
        xrandr.waitForEnd(soon);
        const auto edge = demo::rightEdge(stage->host);
        if (!edge || stage->host.monitors().size() != columns * rows)
            throw std::runtime_error("the X server has not so many displays");
        bound = edge->monitor.frame;
        QList<StoredProfile> all;
        for (int i = 1; i <= profiles; ++i)
            all.append({.name = QStringLiteral("Profile %1").arg(i)});
        if (!writeFile(stage->rig.settingsFile(),
                       settingsText(edge->displayUuid, stage->rig.dongleId(), all)))
            throw std::runtime_error("no settings can be written");
    }

    void activate(char16_t digit) const {
        auto keys = demo::returnChord(stage->host);
        keys += keyCode(digit);
        stage->hands.chord(keys);
    }

    bool isStored(char16_t digit) const {
        return readSettings(stage->rig.settingsFile())
                   .value(QStringLiteral("activeProfile"))
                   .toString() == profileId(digit - u'0');
    }

    /// For how long the window answers nothing when this is done.
    static std::chrono::milliseconds longestSilence(const Accessible& element,
                                                    const std::function<void()>& action) {
        QElapsedTimer all, each;
        qint64 longest = 0;
        all.start();
        each.start();
        action();
        do {
            element.name();
            longest = std::max(longest, each.restart());
        } while (all.elapsed() < 400);
        return std::chrono::milliseconds{longest};
    }

    std::optional<AccessibleDesktop> desktop;
    QRect bound; // the display whose edge is
};

TEST_F(Many, LeaveTheWindowResponsive) {
    std::vector<Accessible> tabs;
    for (const auto* name : {"Edges", "Profiles", "Settings", "Dongles"}) {
        const auto found =
            desktop->element(QStringLiteral("page tab"), QString::fromLatin1(name), soon);
        ASSERT_TRUE(found) << name;
        tabs.push_back(*found);
    }
    char16_t digit = u'1';
    for (const auto& tab : tabs) {
        SCOPED_TRACE(tab.name().toStdString());
        EXPECT_LE(longestSilence(tab, [&] { tab.press(); }), answerLimit);
        // The tab is drawn anew, and the others follow.
        ++digit;
        EXPECT_LE(longestSilence(tab, [&] { activate(digit); }), answerLimit);
        EXPECT_TRUE(waitUntil([&] { return isStored(digit); }, soon));
    }
}

TEST_F(Many, LeaveTheTapResponsive) {
    const auto at = stage->host.pointer();
    ASSERT_TRUE(at);
    stage->hands.moveBy(bound.center() - *at);
    ASSERT_TRUE(stage->cross(soon));
    markNow();
    std::vector<std::chrono::microseconds> delays;
    for (int i = 0; i < 50; ++i) {
        dongleMark = stage->rig.dongle().mark();
        const auto start = now();
        stage->hands.key(keyCode(u'x'), i % 2 == 0);
        ASSERT_TRUE(dongleGets([](const auto& all) { return !all.empty(); }));
        delays.push_back(reports().first().time - start);
    }
    EXPECT_LE(middleOf(delays), keyLimit);
    EXPECT_LE(timeOfReturn(), answerLimit);
}

} // namespace quenthisar::e2e
