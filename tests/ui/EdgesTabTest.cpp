// SPDX-License-Identifier: MIT
#include "UI/Qt/EdgesTab.h"

#include "UI/Qt/Colors.h"
#include "UI/ScreenMapView.h"
#include "ui/UiFixture.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QTextDocument>
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
    QAbstractButton& tile(const QString& name) const {
        return controlNamed<QAbstractButton>(tab, name);
    }
    /// Whether this display is being edited.
    bool edits(const QString& display) const {
        const auto found = controlsNamed<QComboBox>(tab, "Top edge of " + display);
        return !found.empty() && found.front()->isVisible();
    }
    /// Whether a bar of this dongle is drawn at the right side of the first display's tile.
    bool hasBar(const Uuid& dongle) const {
        auto& map = controlNamed<QWidget>(tab, "Map of the displays");
        ScreenMapView view;
        view.screens = *state.screens;
        const auto frame = view.tileRects(map.width(), map.height())[0];
        const QPointF at(frame.maxX() - 2, frame.minY() + frame.height / 2);
        const auto image = map.grab().toImage();
        return image.pixelColor((at * image.devicePixelRatio()).toPoint()) ==
               standardColor(Palette::color(dongle));
    }
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

TEST_F(EdgesTabTest, APersonsChoiceIsWrittenOnce) {
    // The wheel is the page's.
    const QPointF at(5, 5);
    QWheelEvent turn(at, left.mapToGlobal(at), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(&left, &turn);
    EXPECT_FALSE(turn.isAccepted());
    EXPECT_TRUE(defaults.writes.empty());

    left.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&left, Qt::Key_End);
    settle();
    EXPECT_EQ(state.dongleID("D1", Edge::left), std::optional{B});
    EXPECT_EQ(defaults.writes.size(), 1U);
    EXPECT_TRUE(isStored());
    QTest::keyClick(&left, Qt::Key_Home);
    EXPECT_EQ(state.dongleID("D1", Edge::left), std::nullopt);

    state.addProfile("Second");
    settle();
    QTest::keyClick(&picker("Profile"), Qt::Key_Down);
    EXPECT_EQ(*state.activeProfileID, profile(1).id);
}

TEST_F(EdgesTabTest, AnOpenListKeepsItsPlaceButNotForAnotherDisplay) {
    left.showPopup();
    ASSERT_TRUE(left.view()->isVisible());
    left.view()->setCurrentIndex(left.model()->index(2, 0));
    state.dongles.modify([](auto& list) { list.push_back({C, "Late"}); });
    settle();
    EXPECT_TRUE(left.view()->isVisible());
    EXPECT_EQ(left.view()->currentIndex().row(), 2);
    EXPECT_EQ(left.count(), 4);

    state.screens.modify([](auto& list) { list.erase(list.begin()); });
    settle();
    EXPECT_FALSE(left.view()->isVisible());
    EXPECT_TRUE(defaults.writes.empty());
}

TEST_F(EdgesTabTest, TheTilesChooseTheDisplayByMouseAndKeyboard) {
    QTest::mouseClick(&tile("Display D2"), Qt::LeftButton);
    EXPECT_TRUE(edits("Display D2"));
    EXPECT_TRUE(tile("Display D2").isChecked());
    EXPECT_FALSE(tile("Display D1").isChecked());

    // Unplugged, and plugged in again.
    const auto both = *state.screens;
    state.screens.modify([](auto& list) { list.pop_back(); });
    settle();
    EXPECT_TRUE(edits("Display D1"));
    state.screens = both;
    settle();
    EXPECT_TRUE(edits("Display D2"));

    picker("Profile").setFocus(Qt::TabFocusReason);
    QTest::keyClick(&picker("Profile"), Qt::Key_Tab);
    EXPECT_TRUE(tile("Display D1").hasFocus());
    QTest::keyClick(&tile("Display D1"), Qt::Key_Right);
    EXPECT_TRUE(tile("Display D2").hasFocus());
    publishDongles();
    QTest::keyClick(&tile("Display D2"), Qt::Key_Left);
    EXPECT_TRUE(tile("Display D1").hasFocus());
    EXPECT_TRUE(edits("Display D2"));
    QTest::keyClick(&tile("Display D1"), Qt::Key_Space);
    EXPECT_TRUE(edits("Display D1"));
}

TEST_F(EdgesTabTest, SharedEdgesSwitchPickersAndBarsAtOnce) {
    state.setBinding("D1", Edge::right, A);
    auto& right = picker("Right edge of Display D1");
    for (const bool isShared : {false, true}) {
        state.allowSharedEdges = isShared;
        settle();
        EXPECT_EQ(right.isVisible(), isShared);
        EXPECT_EQ(hasBar(A), isShared);
    }
    EXPECT_EQ(right.currentText(), "Zandrovelkin (AAAA)");
}

TEST_F(EdgesTabTest, NamesOfOthersAreShownAsTheyAreWithinBounds) {
    state.setNickname(std::string(200, 'W'), A);
    settle();
    left.showPopup();
    EXPECT_LE(left.view()->window()->width(), 420);
    left.hidePopup();
    const QString name = "R&D <b>Desk</b> &amp;";
    state.setNickname(name.toStdString(), A);
    state.setBinding("D1", Edge::left, A);
    state.screens.modify([&](auto& list) { list.back().name = name.toStdString(); });
    settle();
    EXPECT_EQ(left.currentText(), name);
    for (const auto& hint : {left.toolTip(), tile(name).toolTip()}) {
        QTextDocument document;
        document.setHtml(hint);
        EXPECT_EQ(document.toPlainText(), name);
    }
}

} // namespace
} // namespace quenthisar
