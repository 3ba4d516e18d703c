// SPDX-License-Identifier: MIT
#include "demo/SelectionOwner.h"
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

bool isZombie(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string id, name, state;
    return file >> id >> name >> state && state == "Z";
}

} // namespace

/// Two profiles whose hooks hang or print, both without end.
class Hooks : public StageFixture {
protected:
    void SetUp() override {
        start({}, [this] {
            const auto text =
                settingsText(stage->rig.displayUuid(), stage->rig.dongleId(),
                             {{.name = QStringLiteral("Prints"),
                               .activateCommand = QStringLiteral("while :; do echo x; done")},
                              {.name = QStringLiteral("Hangs"),
                               .activateCommand = QStringLiteral("exec sleep 100")}});
            if (!writeFile(stage->rig.settingsFile(), text))
                throw std::runtime_error("no settings can be written");
        });
        if (HasFatalFailure()) return;
        ASSERT_TRUE(stage->cross(soon));
        stage->pressReturnChord();
        ASSERT_TRUE(stage->hostPointerMoves(soon));
        markNow();
        atFirst = hooks();
    }

    void TearDown() override {
        const auto left = stage ? hooks() : std::set<pid_t>{};
        StageFixture::TearDown();
        for (const auto hook : left)
            if (!atFirst.contains(hook)) ::kill(hook, SIGKILL);
    }

    std::set<pid_t> hooks() { return childrenOf(stage->rig.quenthisar().pid()); }

    void pressHotkey(char16_t key) const {
        auto keys = demo::returnChord(stage->host);
        keys += keyCode(key);
        stage->hands.chord(keys);
    }

    /// While text is being typed, whose pace shows what holds the program up: the longest pause
    /// between two characters.
    std::chrono::microseconds longestPauseWhileSwitching(int times) {
        dongleMark = stage->rig.dongle().mark();
        const auto text = QStringLiteral("0123456789").repeated(3);
        const demo::SelectionOwner clipboard{text, stage->hostDisplay()};
        pressHotkey(u'v');
        EXPECT_TRUE(waitUntil([&] { return digits().size() > 1; }, soon));
        for (int i = 0; i < times; ++i) {
            const auto before = hooks().size();
            pressHotkey(isSecond ? u'1' : u'2');
            isSecond = !isSecond;
            if (!waitUntil([&] { return hooks().size() > before; }, soon)) {
                ADD_FAILURE() << "hook " << i << " is not started";
                break;
            }
        }
        EXPECT_TRUE(waitUntil([&] { return digits().size() == text.size(); }, soon));
        std::chrono::microseconds longest{};
        const auto all = digits();
        for (qsizetype i = 1; i < all.size(); ++i)
            longest = std::max(longest, all[i].time - all[i - 1].time);
        return longest;
    }

    QList<ReportLine> digits() {
        auto all = reports();
        all.removeIf([](const ReportLine& report) {
            const auto keys = report.field(QStringLiteral("keys"));
            return keys.size() != 1 || !keys[0].isDigit();
        });
        return all;
    }

    std::set<pid_t> atFirst; // the guard
    bool isSecond = false;
};

TEST_F(Hooks, ThatHangOrPrintWithoutEndHoldNothingUp) {
    EXPECT_LE(longestPauseWhileSwitching(24), longestPause);
    EXPECT_TRUE(stage->cross(soon));
    expectTakeover();

    for (const auto hook : hooks())
        if (!atFirst.contains(hook)) ::kill(hook, SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return hooks() == atFirst; }, soon)) << "zombies are left";
    EXPECT_TRUE(std::ranges::none_of(hooks(), isZombie));
}

} // namespace quenthisar::e2e
