// SPDX-License-Identifier: MIT
#include "Linux/X11AccessibilityTrust.h"
#include "linux/XStage.h"

#include <gtest/gtest.h>

#include <QApplication>

namespace quenthisar::test {

TEST(XDisplays, ListTheMonitorsAndTellOfChangesOnce) {
    XStage stage;
    const auto before = stage.displays.screens();
    ASSERT_EQ(before.size(), 1U);
    EXPECT_EQ(before[0].frame, (Rect{0, 0, 1280, 800}));
    const auto identifier = stage.displays.displayUUID(*before[0].screenNumber);
    ASSERT_TRUE(identifier);
    EXPECT_TRUE(Uuid::parse(*identifier));

    int changes = 0;
    stage.displays.onChange([&] { ++changes; });
    stage.setMonitor(QStringLiteral("LEFT"), QStringLiteral("400/100x800/100+0+0"),
                     QStringLiteral("none"));
    stage.setMonitor(QStringLiteral("RIGHT"), QStringLiteral("880/100x600/100+400+100"),
                     QStringLiteral("none"));
    EXPECT_TRUE(runUntil([&] { return changes > 0; }));
    EXPECT_EQ(changes, 1);

    const auto screens = stage.displays.screens();
    ASSERT_GE(screens.size(), 2U);
    EXPECT_EQ(screens[0].localizedName, "RIGHT");
    EXPECT_EQ(screens[0].frame, (Rect{0, 0, 880, 600}));
    const auto left = std::ranges::find(screens, "LEFT", &Screen::localizedName);
    ASSERT_NE(left, screens.end());
    EXPECT_EQ(left->frame, (Rect{-400, -100, 400, 800}));
    EXPECT_NE(stage.displays.displayUUID(*left->screenNumber),
              stage.displays.displayUUID(*screens[0].screenNumber));
}

TEST(XDisplays, StayAsTheyWereUntilTheChangeIsToldOf) {
    XStage stage;
    const auto before = stage.displays.screens();
    const auto locationOfTheCorner = [&] { return stage.space.globalFromRoot({0, 0}); };
    ASSERT_EQ(locationOfTheCorner(), (Point{0, 0}));
    bool isToldOf = false;
    stage.displays.onChange([&] { isToldOf = true; });
    stage.setMonitor(QStringLiteral("SECOND"), QStringLiteral("800/100x600/100+400+100"),
                     QStringLiteral("none"));
    // Whoever asks meanwhile must not move the locations of those that have the old list.
    ASSERT_TRUE(runUntil([&] {
        if (isToldOf) return true;
        EXPECT_EQ(stage.displays.screens().size(), before.size());
        EXPECT_EQ(locationOfTheCorner(), (Point{0, 0}));
        return testing::Test::HasFailure();
    }));
    EXPECT_EQ(locationOfTheCorner(), (Point{0, 0})) << "nobody has asked for the new list";
    EXPECT_EQ(stage.displays.screens().front().frame, (Rect{0, 0, 800, 600}));
    EXPECT_EQ(locationOfTheCorner(), (Point{-400, -100}));
}

TEST(X11AccessibilityTrust, IsGivenInAnX11SessionOnly) {
    XStage stage;
    EXPECT_TRUE(X11AccessibilityTrust{}.isProcessTrusted());
    qputenv("WAYLAND_DISPLAY", "wayland-0");
    EXPECT_FALSE(X11AccessibilityTrust{}.isProcessTrusted());
    qunsetenv("WAYLAND_DISPLAY");
    qputenv("XDG_SESSION_TYPE", "wayland");
    EXPECT_FALSE(X11AccessibilityTrust{}.isProcessTrusted());
    qunsetenv("XDG_SESSION_TYPE");
    qputenv("DISPLAY", ":nonsense");
    EXPECT_FALSE(X11AccessibilityTrust{}.isProcessTrusted());
}

TEST(X11AccessibilityTrust, PromptsWithOneDialogThatBlocksNothing) {
    const auto dialogs = [] {
        QList<QMessageBox*> open;
        for (auto* widget : QApplication::topLevelWidgets())
            if (auto* box = qobject_cast<QMessageBox*>(widget); box && box->isVisible())
                open.push_back(box);
        return open;
    };
    X11AccessibilityTrust trust;
    trust.prompt();
    trust.prompt();
    ASSERT_EQ(dialogs().size(), 1);
    EXPECT_FALSE(dialogs().front()->isModal());
    dialogs().front()->close();
    EXPECT_TRUE(runUntil([&] { return dialogs().isEmpty(); }));
    trust.prompt();
    EXPECT_EQ(dialogs().size(), 1);
}

} // namespace quenthisar::test
