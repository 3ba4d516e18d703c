// SPDX-License-Identifier: MIT
#include "UI/Qt/EdgesTab.h"

#include "UI/Qt/Colors.h"
#include "UI/ScreenMapView.h"
#include "ui/UiFixture.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QLabel>
#include <QTextDocument>
#include <QWheelEvent>

#include <algorithm>

namespace quenthisar {
namespace {

/// The tab on screen.
struct Fixture : UiFixture {
    EdgesTab tab{state};

    Fixture() {
        present(tab);
        settle();
        defaults.writes.clear();
    }

    QComboBox& picker(const QString& name) const { return controlNamed<QComboBox>(tab, name); }
    QAbstractButton& tile(const QString& name) const {
        return controlNamed<QAbstractButton>(tab, name);
    }
    /// The name of the display being edited, from one of its pickers; empty if there is none.
    QString edited() const {
        for (const auto* box : tab.findChildren<QComboBox*>())
            if (box->isVisible() && box->accessibleName().startsWith("Top edge of "))
                return box->accessibleName().mid(12);
        return {};
    }
    bool says(const QString& text) const {
        const auto labels = tab.findChildren<QLabel*>();
        return std::ranges::any_of(
            labels, [&](const QLabel* l) { return l->isVisible() && l->text() == text; });
    }
    QStringList texts(const QComboBox& box) const {
        QStringList list;
        for (int i = 0; i < box.count(); ++i) list << box.itemText(i);
        return list;
    }
    /// Whether a bar of this dongle is drawn at a side of the first display's tile.
    bool hasBar(Edge edge, const Uuid& dongle) const {
        auto& map = controlNamed<QWidget>(tab, "Map of the displays");
        ScreenMapView view;
        view.screens = *state.screens;
        const auto frame = view.tileRects(map.width(), map.height())[0];
        const QPointF middle(frame.x + frame.width / 2, frame.y + frame.height / 2);
        const QPointF at = edge == Edge::right ? QPointF(frame.maxX() - 2, middle.y())
                                               : QPointF(frame.minX() + 2, middle.y());
        const auto image = map.grab().toImage();
        return image.pixelColor((at * image.devicePixelRatio()).toPoint()) ==
               standardColor(Palette::color(dongle));
    }
};

TEST(EdgesTab, RedrawingNeverWrites) {
    Fixture f;
    f.state.setBinding("D1", Edge::left, A);
    f.state.setBinding("D1", Edge::top, C); // known from the settings only
    f.state.addProfile("Second");
    f.settle();
    f.defaults.writes.clear();
    const auto stored = *f.state.profiles;

    f.publishDongles();
    f.state.dongles = std::vector<Dongle>{};
    f.settle();
    EXPECT_EQ(f.picker("Left edge of Display D1").currentText(), "Zandrovelkin (AAAA)");
    EXPECT_EQ(f.picker("Top edge of Display D1").currentText(), "Zandrovelkin (CCCC)");
    f.state.dongles = {{B, "Other"}, {C, "Late"}, {A, "Zandrovelkin BLE"}};
    f.settle();
    EXPECT_EQ(f.picker("Left edge of Display D1").currentText(), "Zandrovelkin (AAAA)");
    EXPECT_EQ(f.picker("Top edge of Display D1").currentText(), "Late (CCCC)");
    const auto screens = *f.state.screens;
    f.state.screens = std::vector<ScreenInfo>{};
    f.settle();
    EXPECT_TRUE(f.says("No displays detected."));
    f.state.screens = screens;
    f.settle();
    f.state.activeProfileID = f.profile(1).id; // as a hotkey does, but without its own writing
    f.settle();
    EXPECT_EQ(f.picker("Left edge of Display D1").currentText(), "None");
    EXPECT_EQ(f.picker("Profile").currentText(), "Second");

    EXPECT_EQ(*f.state.profiles, stored);
    EXPECT_EQ(*f.state.activeProfileID, f.profile(1).id);
    EXPECT_TRUE(f.defaults.writes.empty());
    EXPECT_TRUE(f.launcher.launched.empty());
}

TEST(EdgesTab, APersonsChoiceIsWrittenOnce) {
    Fixture f;
    auto& left = f.picker("Left edge of Display D1");
    EXPECT_EQ(f.texts(left), QStringList({"None", "Zandrovelkin (AAAA)", "Other (BBBB)"}));
    left.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&left, Qt::Key_Down);
    QTest::keyClick(&left, Qt::Key_Down);
    f.settle();
    EXPECT_EQ(f.state.dongleID("D1", Edge::left), std::optional{B});
    EXPECT_EQ(f.defaults.writes.size(), 2U);
    EXPECT_TRUE(f.isStored());
    EXPECT_TRUE(f.hasBar(Edge::left, B));

    QTest::keyClick(&left, Qt::Key_Home);
    EXPECT_EQ(f.state.dongleID("D1", Edge::left), std::nullopt);
    f.settle();
    EXPECT_FALSE(f.hasBar(Edge::left, B));

    f.state.addProfile("Second");
    f.settle();
    auto& profiles = f.picker("Profile");
    QTest::keyClick(&profiles, Qt::Key_Down);
    EXPECT_EQ(*f.state.activeProfileID, f.profile(1).id);
}

TEST(EdgesTab, TheWheelIsThePages) {
    Fixture f;
    auto& left = f.picker("Left edge of Display D1");
    const QPointF at(5, 5);
    QWheelEvent turn(at, left.mapToGlobal(at), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(&left, &turn);
    EXPECT_EQ(left.currentIndex(), 0);
    EXPECT_FALSE(turn.isAccepted());
    EXPECT_TRUE(f.defaults.writes.empty());
}

TEST(EdgesTab, AnOpenListKeepsItsPlaceButNotForAnotherDisplay) {
    Fixture f;
    auto& left = f.picker("Left edge of Display D1");
    left.showPopup();
    ASSERT_TRUE(left.view()->isVisible());
    left.view()->setCurrentIndex(left.model()->index(2, 0));
    f.publishDongles();
    f.state.dongles.modify([](auto& list) { list.push_back({C, "Late"}); });
    f.settle();
    EXPECT_TRUE(left.view()->isVisible());
    EXPECT_EQ(left.view()->currentIndex().row(), 2);
    EXPECT_EQ(left.count(), 4);

    f.state.screens.modify([](auto& list) { list.erase(list.begin()); });
    f.settle();
    EXPECT_FALSE(left.view()->isVisible());
    EXPECT_TRUE(f.defaults.writes.empty());
}

TEST(EdgesTab, AClickOnATileEditsItsDisplay) {
    Fixture f;
    EXPECT_EQ(f.edited(), "Display D1");
    EXPECT_TRUE(f.tile("Display D1").isChecked());
    QTest::mouseClick(&f.tile("Display D2"), Qt::LeftButton);
    EXPECT_EQ(f.edited(), "Display D2");
    EXPECT_FALSE(f.tile("Display D1").isChecked());
    EXPECT_TRUE(f.tile("Display D2").isChecked());

    // Unplugged, and plugged in again.
    const auto both = *f.state.screens;
    f.state.screens.modify([](auto& list) { list.pop_back(); });
    f.settle();
    EXPECT_EQ(f.edited(), "Display D1");
    EXPECT_TRUE(controlsNamed<QAbstractButton>(f.tab, "Display D2").empty());
    f.state.screens = both;
    f.settle();
    EXPECT_EQ(f.edited(), "Display D2");
    QTest::mouseClick(&f.tile("Display D2"), Qt::LeftButton);
    EXPECT_TRUE(f.tile("Display D2").isChecked());
}

TEST(EdgesTab, TheKeyboardReachesEveryTile) {
    Fixture f;
    auto& profiles = f.picker("Profile");
    auto &first = f.tile("Display D1"), &second = f.tile("Display D2");
    profiles.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&profiles, Qt::Key_Tab);
    EXPECT_EQ(f.focused(), "Display D1");
    QTest::keyClick(&first, Qt::Key_Tab);
    EXPECT_EQ(f.focused(), "Display D2");
    QTest::keyClick(&second, Qt::Key_Left);
    EXPECT_EQ(f.focused(), "Display D1");
    QTest::keyClick(&first, Qt::Key_Right);
    EXPECT_EQ(f.focused(), "Display D2");
    EXPECT_EQ(f.edited(), "Display D1");
    QTest::keyClick(&second, Qt::Key_Space);
    EXPECT_EQ(f.edited(), "Display D2");
    f.publishDongles();
    EXPECT_EQ(f.focused(), "Display D2");
    QTest::keyClick(&second, Qt::Key_Backtab);
    EXPECT_EQ(f.focused(), "Display D1");
    QTest::keyClick(&first, Qt::Key_Return);
    EXPECT_EQ(f.edited(), "Display D1");
    second.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&second, Qt::Key_Tab);
    EXPECT_EQ(f.focused(), "Top edge of Display D1");
}

TEST(EdgesTab, SharedEdgesSwitchPickersAndBarsAtOnce) {
    Fixture f;
    f.state.setBinding("D1", Edge::right, A);
    f.settle();
    auto& right = f.picker("Right edge of Display D1");
    EXPECT_FALSE(right.isVisible());
    EXPECT_TRUE(f.says("Between displays - not available"));
    EXPECT_FALSE(f.hasBar(Edge::right, A));
    f.state.allowSharedEdges = true;
    f.settle();
    EXPECT_TRUE(right.isVisible());
    EXPECT_EQ(right.currentText(), "Zandrovelkin (AAAA)");
    EXPECT_FALSE(f.says("Between displays - not available"));
    EXPECT_TRUE(f.hasBar(Edge::right, A));
}

TEST(EdgesTab, AnUnknownDongleIsShownButNotOffered) {
    Fixture f;
    f.state.setBinding("D1", Edge::left, C);
    f.settle();
    f.defaults.writes.clear();
    auto& left = f.picker("Left edge of Display D1");
    EXPECT_EQ(f.texts(left),
              QStringList({"None", "Zandrovelkin (AAAA)", "Other (BBBB)", "Zandrovelkin (CCCC)"}));
    EXPECT_EQ(left.currentIndex(), 3);
    EXPECT_FALSE(left.model()->index(3, 0).flags() & Qt::ItemIsEnabled);
    QTest::keyClick(&left, Qt::Key_Up);
    f.settle();
    EXPECT_EQ(f.state.dongleID("D1", Edge::left), std::optional{B});
    EXPECT_EQ(left.count(), 3);
}

TEST(EdgesTab, NamesOfOthersAreShownAsTheyAreWithinBounds) {
    const QString name = "R&D <b>Desk</b> &amp;";
    const auto seen = [](const QString& hint) {
        if (!Qt::mightBeRichText(hint)) return hint;
        QTextDocument document;
        document.setHtml(hint);
        return document.toPlainText();
    };
    Fixture f;
    f.state.setNickname(std::string(200, 'W'), A);
    f.settle();
    f.picker("Left edge of Display D1").showPopup();
    EXPECT_LE(f.picker("Left edge of Display D1").view()->window()->width(), 420);
    f.picker("Left edge of Display D1").hidePopup();
    f.state.setNickname(name.toStdString(), A);
    f.state.setNickname("R&D", B);
    f.state.setBinding("D1", Edge::left, A);
    f.state.setBinding("D1", Edge::bottom, B);
    f.state.screens.modify([&](auto& list) { list.back().name = name.toStdString(); });
    f.settle();
    auto& left = f.picker("Left edge of Display D1");
    ASSERT_EQ(left.currentText(), name);
    EXPECT_EQ(seen(left.toolTip()), name);
    EXPECT_EQ(seen(left.itemData(1, Qt::ToolTipRole).toString()), name);
    EXPECT_EQ(seen(f.picker("Bottom edge of Display D1").toolTip()), "R&D");
    EXPECT_EQ(seen(f.tile(name).toolTip()), name);

    f.state.dongles = {};
    f.settle();
    EXPECT_EQ(seen(left.toolTip()), name + " has not been found since the program was started.");
}

} // namespace
} // namespace quenthisar
