// SPDX-License-Identifier: MIT
#include "e2e/ProfileSettings.h"
#include "e2e/StageFixture.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <set>

namespace quenthisar::e2e {

namespace {

/// Twelve characters take this long: whoever waited for a hook would be far beyond it.
constexpr auto longestPause = 1s * sanitizerFactor;

/// What a program has started, and has not reaped.
std::set<pid_t> childrenOf(pid_t process) {
    std::set<pid_t> result;
    std::error_code gone;
    const auto threads = "/proc/" + std::to_string(process) + "/task";
    for (const auto& thread : std::filesystem::directory_iterator(threads, gone)) {
        std::ifstream children(thread.path() / "children");
        result.insert(std::istream_iterator<pid_t>(children), {});
    }
    return result;
}

} // namespace

/// Two profiles whose hooks hang or print, both without end.
class Hooks : public StageFixture {
protected:
    void SetUp() override {
        start({}, [this] {
            writeProfiles(stage->rig.settingsFile(), stage->rig.displayUuid(),
                          stage->rig.dongleId(),
                          {{.name = u"Prints"_s, .activateCommand = u"while :; do echo x; done"_s},
                           {.name = u"Hangs"_s, .activateCommand = u"exec sleep 100"_s}});
        });
        if (HasFatalFailure()) return;
        ASSERT_TRUE(stage->cross(soon));
        stage->pressReturnChord();
        ASSERT_TRUE(stage->hostPointerMoves(soon));
        markNow();
        atFirst = hooks();
    }

    void TearDown() override {
        if (stage) killHooks();
        StageFixture::TearDown();
    }

    std::set<pid_t> hooks() { return childrenOf(stage->rig.quenthisar().pid()); }
    void killHooks() {
        for (const auto hook : hooks())
            if (!atFirst.contains(hook)) ::kill(hook, SIGKILL);
    }

    std::set<pid_t> atFirst; // the guard
};

TEST_F(Hooks, ThatHangOrPrintWithoutEndHoldNothingUp) {
    // The pace of what is typed meanwhile shows what holds the program up.
    const auto text = u"0123456789"_s.repeated(3);
    const demo::SelectionOwner clipboard{text, stage->hostDisplay()};
    pressHotkey(u'v');
    EXPECT_TRUE(waitUntil([&] { return digits().size() > 1; }, soon));
    for (int i = 0; i < 24; ++i) {
        const auto before = hooks().size();
        pressHotkey(i % 2 == 0 ? u'2' : u'1');
        ASSERT_TRUE(waitUntil([&] { return hooks().size() > before; }, soon))
            << "hook " << i << " is not started";
    }
    EXPECT_TRUE(waitUntil([&] { return digits().size() == text.size(); }, soon));
    const auto all = digits();
    for (qsizetype i = 1; i < all.size(); ++i)
        EXPECT_LE(all[i].time - all[i - 1].time, longestPause) << "character " << i;
    EXPECT_TRUE(stage->cross(soon));
    expectTakeover();

    killHooks();
    EXPECT_TRUE(waitUntil([&] { return hooks() == atFirst; }, soon)) << "zombies are left";
}

} // namespace quenthisar::e2e
