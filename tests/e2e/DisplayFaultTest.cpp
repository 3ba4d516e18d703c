// SPDX-License-Identifier: MIT
#include "demo/XorgServer.h"
#include "e2e/StageFixture.h"

#include <QThread>

namespace quenthisar::e2e {

/// What becomes of the displays in a takeover; the bound edge is at the right of DUMMY1.
struct Change {
    const char* name;
    const char* arguments; // of xrandr
};

void PrintTo(const Change& change, std::ostream* out) {
    *out << change.name;
}

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
        demo::ChildProcess xrandr(u"xrandr"_s, arguments.split(u' '),
                                  {{u"DISPLAY"_s, server.display()}});
        ASSERT_EQ(xrandr.waitForEnd(soon), 0);
        // Displays change in several steps; the program looks after the last, and tells nobody.
        constexpr unsigned long quietTime = 250; // milliseconds
        QThread::msleep(4 * quietTime);
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
    changeDisplays(QString::fromLatin1(GetParam().arguments));
    expectTyped(u"Still there"_s);
    holdSome();
    stage->pressReturnChord();
    EXPECT_TRUE(nothingIsHeldOnTarget());
    hold(some(), false);
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    if (!stage->host.monitors().isEmpty()) {
        EXPECT_TRUE(pointerIsOnADisplay());
        EXPECT_TRUE(stage->hostPointerMoves(soon));
    }

    // As the server starts with.
    changeDisplays(u"--output DUMMY0 --mode 1280x800 --pos 0x0 --primary "
                   "--output DUMMY1 --mode 1024x768 --pos 1280x0"_s);
    EXPECT_TRUE(stage->hostPointerMoves(soon));
    EXPECT_TRUE(pointerIsOnADisplay());
    EXPECT_TRUE(stage->cross(soon)) << "its edge is not there again";
}

INSTANTIATE_TEST_SUITE_P(
    Changes, DisplayFault,
    testing::Values(Change{"Unplugged", "--output DUMMY1 --off"},
                    Change{"UnpluggedWithItsPartOfTheScreen",
                           "--output DUMMY1 --off --fb 1280x800"},
                    Change{"Smaller", "--output DUMMY1 --mode 640x480"},
                    Change{"TheOtherUnplugged",
                           "--output DUMMY0 --off --output DUMMY1 --pos 0x0 --fb 1024x768"},
                    Change{"AllGone", "--output DUMMY0 --off --output DUMMY1 --off"}),
    [](const auto& row) { return std::string{row.param.name}; });

} // namespace quenthisar::e2e
