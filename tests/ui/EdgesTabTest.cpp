// SPDX-License-Identifier: MIT
#include "UI/Qt/EdgesTab.h"

#include "ui/UiFixture.h"

#include <QComboBox>
#include <QWheelEvent>

namespace quenthisar {
namespace {

/// The tab on screen.
struct EdgesTabTest : testing::Test, UiFixture {
    EdgesTab tab{state};
    QComboBox& left;

    EdgesTabTest() : left(picker("Left edge of Display D1")) {
        present(tab);
        settle();
        defaults.writes.clear();
    }

    QComboBox& picker(const QString& name) const { return controlNamed<QComboBox>(tab, name); }
};

TEST_F(EdgesTabTest, RedrawingNeverWrites) {
    state.setBinding("D1", Edge::left, A);
    state.setBinding("D1", Edge::top, C); // known from the settings only
    state.addProfile("Second");
    settle();
    defaults.writes.clear();
    const auto stored = *state.profiles;
    auto& top = picker("Top edge of Display D1");

    state.dongles = std::vector<Dongle>{};
    settle();
    EXPECT_EQ(left.currentText(), "Zandrovelkin (AAAA)");
    EXPECT_EQ(top.currentText(), "Zandrovelkin (CCCC)");
    EXPECT_FALSE(top.model()->index(top.currentIndex(), 0).flags() & Qt::ItemIsEnabled);
    state.dongles = {{B, "Other"}, {C, "Late"}, {A, "Zandrovelkin BLE"}};
    settle();
    EXPECT_EQ(left.currentText(), "Zandrovelkin (AAAA)");
    EXPECT_EQ(top.currentText(), "Late (CCCC)");
    const auto screens = *state.screens;
    state.screens = std::vector<ScreenInfo>{};
    settle();
    state.screens = screens;
    settle();
    state.activeProfileID = profile(1).id; // as a hotkey does, but without its own writing
    settle();
    EXPECT_EQ(picker("Left edge of Display D1").currentText(), "None");
    EXPECT_EQ(picker("Profile").currentText(), "Second");
    EXPECT_EQ(*state.profiles, stored);
    EXPECT_TRUE(defaults.writes.empty());
}

TEST_F(EdgesTabTest, LeavesTheWheelToThePage) {
    const QPointF at(5, 5);
    QWheelEvent turn(at, left.mapToGlobal(at), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(&left, &turn);
    EXPECT_FALSE(turn.isAccepted());
    EXPECT_TRUE(defaults.writes.empty());
}

} // namespace
} // namespace quenthisar
