// SPDX-License-Identifier: MIT
#include "demo/XorgServer.h"
#include "e2e/StageFixture.h"

#include <QThread>

namespace quenthisar::e2e {

namespace {

constexpr unsigned long quietTime = 250; // milliseconds

/// Of a server as `startXorg` starts it.
const QString bothDisplays = QStringLiteral("--output DUMMY0 --mode 1280x800 --pos 0x0 --primary "
                                            "--output DUMMY1 --mode 1024x768 --pos 1280x0");

/// What becomes of the displays in a takeover; the bound edge is at the right of DUMMY1.
struct Change {
    const char* name;
    QString arguments; // of xrandr
};

void PrintTo(const Change& change, std::ostream* out) {
    *out << change.name;
}

} // namespace

/// A takeover from one of two displays.
class DisplayFault : public StageFixture, public testing::WithParamInterface<Change> {
protected:
    void SetUp() override {
        demo::useKeymapOfDesktops(server);
        enter({.programs = {}, .hostDisplay = server.display()});
    }

    /// The server, which is younger than all that, would end it.
    void TearDown() override {
        StageFixture::TearDown();
        stage.reset();
    }

    void changeDisplays(const QString& arguments) const {
        run(QStringLiteral("xrandr"), arguments);
        // Displays change in several steps; the program looks after the last, and tells nobody.
        QThread::msleep(4 * quietTime);
    }

    void run(const QString& program, const QString& arguments) const {
        demo::ChildProcess process(program, arguments.split(u' '),
                                   {{QStringLiteral("DISPLAY"), server.display()}});
        ASSERT_EQ(process.waitForEnd(soon), 0);
    }

    bool pointerIsOnADisplay() const {
        const auto at = stage->host.pointer();
        const auto monitors = stage->host.monitors();
        return at && std::ranges::any_of(monitors, [&](const auto& monitor) {
                   return monitor.frame.contains(*at);
               });
    }

    const QTemporaryDir folder;
    const demo::XServer server = demo::startXorg(folder.path());
};

TEST_P(DisplayFault, LeavesTheTakeoverAndTheWayBack) {
    changeDisplays(GetParam().arguments);
    ASSERT_TRUE(stage->hands.type(QStringLiteral("Still there"), 0ms));
    EXPECT_TRUE(targetGetsText(QStringLiteral("Still there")));
    stage->hands.key(keyCode(u'k'), true);
    ASSERT_TRUE(targetHolds({.keys = {keyCode(u'k')}, .buttons = {}}));
    EXPECT_EQ(inputOnHost(), QStringList{});

    stage->pressReturnChord();
    stage->hands.key(keyCode(u'k'), false);
    EXPECT_TRUE(nothingIsHeldOnTarget());
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    if (!stage->host.monitors().isEmpty()) {
        EXPECT_TRUE(pointerIsOnADisplay());
        EXPECT_TRUE(stage->hostPointerMoves(soon));
    }

    changeDisplays(bothDisplays);
    EXPECT_TRUE(stage->hostPointerMoves(soon));
    EXPECT_TRUE(pointerIsOnADisplay());
    EXPECT_TRUE(stage->cross(soon)) << "its edge is not there again";
}

INSTANTIATE_TEST_SUITE_P(
    Changes, DisplayFault,
    testing::Values(
        Change{"Unplugged", QStringLiteral("--output DUMMY1 --off")},
        Change{"UnpluggedWithItsPartOfTheScreen",
               QStringLiteral("--output DUMMY1 --off --fb 1280x800")},
        Change{"Smaller", QStringLiteral("--output DUMMY1 --mode 640x480")},
        Change{"TheOtherUnplugged",
               QStringLiteral("--output DUMMY0 --off --output DUMMY1 --pos 0x0 --fb 1024x768")},
        Change{"AllGone", QStringLiteral("--output DUMMY0 --off --output DUMMY1 --off")}),
    [](const auto& row) { return std::string{row.param.name}; });

} // namespace quenthisar::e2e
