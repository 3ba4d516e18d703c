// SPDX-License-Identifier: MIT
#include "demo/Binding.h"
#include "e2e/ProfileSettings.h"
#include "e2e/WindowFixture.h"

#include <QElapsedTimer>

namespace quenthisar::e2e {

namespace {

constexpr int dongles = 50, columns = 10, rows = 5, profiles = 200;

/// What nobody takes for a delay yet.
constexpr auto answerLimit = 200ms * sanitizerFactor, keyLimit = 10ms * sanitizerFactor;

/// For how long the window answers nothing when this is done.
std::chrono::milliseconds longestSilence(const Accessible& element,
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

} // namespace

/// The program among 50 dongles, on 50 displays, with 200 profiles, its window open.
class Many : public WindowFixture {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(
            open({.programs = {}, .otherDongles = dongles - 1}, [this] { prepare(); }));
        ASSERT_TRUE(isReady());
        const auto areListed = [this] {
            const auto lines = stage->rig.dongle().since(0);
            return lines.filter(u"\" discovered"_s).size() == dongles;
        };
        ASSERT_TRUE(waitUntil(areListed, soon));
    }

    void prepare() {
        QStringList arguments;
        for (int i = 0; i < columns * rows; ++i)
            arguments += {u"--setmonitor"_s, u"M%1"_s.arg(i),
                          u"128/40x160/50+%1+%2"_s.arg(i % columns * 128).arg(i / columns * 160),
                          i == 0 ? u"screen"_s : u"none"_s};
        demo::ChildProcess xrandr(u"xrandr"_s, arguments, {{u"DISPLAY"_s, stage->hostDisplay()}});
        xrandr.waitForEnd(soon);
        const auto edge = demo::rightEdge(stage->host);
        if (!edge || stage->host.monitors().size() != columns * rows)
            throw std::runtime_error("the X server has not so many displays");
        bound = edge->monitor.frame;
        QList<StoredProfile> all;
        for (int i = 1; i <= profiles; ++i) all.append({.name = u"Profile %1"_s.arg(i)});
        writeProfiles(stage->rig.settingsFile(), edge->displayUuid, dongleId, all);
    }

    QRect bound; // the display whose edge is
};

TEST_F(Many, LeaveWindowAndTapResponsive) {
    char16_t digit = u'1';
    // Other work on the machine prolongs one of three, hardly all.
    const auto switchesInTime = [&](const Accessible& tab) {
        const auto once = [&] {
            digit = digit == u'9' ? u'1' : static_cast<char16_t>(digit + 1);
            return longestSilence(tab, [&] { pressHotkey(digit); }) <= answerLimit;
        };
        return once() || once() || once();
    };
    for (const auto& name : {u"Edges"_s, u"Profiles"_s, u"Settings"_s, u"Dongles"_s}) {
        SCOPED_TRACE(name.toStdString());
        const auto tab = find(Role::tab, name);
        ASSERT_TRUE(tab);
        // A second press would find the tab made and drawn.
        EXPECT_LE(longestSilence(*tab, [&] { tab->press(); }), 2 * answerLimit);
        // The tab is drawn anew, and the others follow.
        EXPECT_TRUE(switchesInTime(*tab));
        EXPECT_TRUE(isStored(u"activeProfile"_s, profileId(digit - u'0')));
    }

    const auto at = stage->host.pointer();
    ASSERT_TRUE(at);
    stage->hands.moveBy(bound.center() - *at);
    ASSERT_TRUE(stage->cross(soon));
    std::vector<std::chrono::microseconds> delays;
    for (int i = 0; i < 50; ++i) {
        dongleMark = stage->rig.dongle().mark();
        const auto start = std::chrono::steady_clock::now().time_since_epoch();
        stage->hands.key(keyCode(u'x'), i % 2 == 0);
        ASSERT_TRUE(dongleGets([](const Reports& all) { return !all.empty(); }));
        delays.push_back(reports().first().time -
                         std::chrono::duration_cast<std::chrono::microseconds>(start));
    }
    std::ranges::sort(delays);
    EXPECT_LE(delays[delays.size() / 2], keyLimit);
    EXPECT_LE(timeOfReturn(), answerLimit);
}

} // namespace quenthisar::e2e
