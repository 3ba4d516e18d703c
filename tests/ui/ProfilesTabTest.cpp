// SPDX-License-Identifier: MIT
#include "UI/Qt/ProfilesTab.h"

#include "ui/UiFixture.h"

#include <QAbstractButton>
#include <QLineEdit>

namespace quenthisar {
namespace {

/// The tab on screen, over a second profile.
struct Fixture : UiFixture {
    ProfilesTab tab{state};

    Fixture() {
        state.addProfile("Second");
        present(tab);
        settle();
        defaults.writes.clear();
    }

    QLineEdit& field(const QString& name) const { return controlNamed<QLineEdit>(tab, name); }
    QAbstractButton& button(const QString& name) const {
        return controlNamed<QAbstractButton>(tab, name);
    }
    void click(const QString& name) {
        QTest::mouseClick(&button(name), Qt::LeftButton);
        settle();
    }
};

TEST(ProfilesTab, TypingSurvivesWhateverIsPublished) {
    Fixture f;
    auto& name = f.field("Name of profile 2");
    name.setFocus(Qt::TabFocusReason);
    name.setText("Dsk");
    name.setCursorPosition(1);
    f.defaults.writes.clear();
    for (const char key : std::string("e  ")) {
        QTest::keyClick(&name, key);
        f.publishDongles();
    }
    EXPECT_EQ(name.text(), "De  sk");
    EXPECT_EQ(name.cursorPosition(), 4);
    EXPECT_EQ(f.defaults.writes.size(), 3U); // one for each key, none for the redrawing

    // Cards come and go around it.
    f.state.addProfile("Third");
    f.state.deleteProfile(f.profile(0).id);
    f.settle();
    QTest::keyClick(&name, '!');
    EXPECT_EQ(&f.field("Name of profile 1"), &name);
    EXPECT_TRUE(name.hasFocus());
    EXPECT_EQ(f.profile(0).name, "De  !sk");
    EXPECT_TRUE(f.isStored());

    name.selectAll();
    QTest::keyClick(&name, Qt::Key_Backspace);
    f.publishDongles();
    EXPECT_EQ(name.text(), "");
    QTest::keyClick(&name, Qt::Key_Tab);
    EXPECT_EQ(name.text(), "De  !sk") << "left, it shows what is stored";
}

TEST(ProfilesTab, EachHookHasItsField) {
    Fixture f;
    QTest::keyClicks(&f.field("On activate - run on Mac (shell), profile 1"), "a ");
    QTest::keyClicks(&f.field("On deactivate - run on Mac (shell), profile 1"), "b");
    f.field("On activate - send to target (e.g. cmd+l), profile 1").setText("cmd+l");
    const auto& profile = f.profile(0);
    EXPECT_EQ(profile, (Profile{profile.id, "Default", {}, "a ", "b", "cmd+l"}));
    EXPECT_TRUE(f.isStored());
}

TEST(ProfilesTab, TheMarkerFollowsTheActiveProfile) {
    Fixture f;
    auto& first = f.button("Make profile Default active");
    auto& second = f.button("Make profile Second active");
    f.click("Make profile Second active");
    f.click("Make profile Second active");
    EXPECT_EQ(*f.state.activeProfileID, f.profile(1).id);
    EXPECT_FALSE(first.isChecked());
    EXPECT_TRUE(second.isChecked());
    f.state.switchProfile(f.profile(0).id);
    f.settle();
    EXPECT_TRUE(first.isChecked());
}

TEST(ProfilesTab, ADoubleClickDeletesOneProfileAndNoneTheLast) {
    Fixture f;
    f.state.addProfile("Third");
    f.settle();
    const int interval = QApplication::doubleClickInterval();
    QApplication::setDoubleClickInterval(60'000);
    f.click("Delete profile Second");
    f.click("Delete profile Third");
    QApplication::setDoubleClickInterval(interval);
    ASSERT_EQ(f.state.profiles->size(), 2U);
    f.state.deleteProfile(f.profile(0).id);
    f.settle();
    EXPECT_FALSE(f.button("Delete profile Third").isVisible());
}

TEST(ProfilesTab, AddsByButtonAndByReturnAndEmptiesTheField) {
    Fixture f;
    auto& name = f.field("New profile name");
    name.setFocus(Qt::TabFocusReason);
    QTest::keyClicks(&name, "Games");
    f.publishDongles();
    QTest::keyClick(&name, Qt::Key_Return);
    EXPECT_EQ(name.text(), "");
    QTest::keyClick(&name, Qt::Key_Return);
    ASSERT_EQ(f.state.profiles->size(), 3U) << "Return in an empty field adds nothing";
    EXPECT_EQ(f.profile(2).name, "Games");
    f.click("Add profile");
    EXPECT_EQ(f.profile(3).name, "Profile 4");

    // The new cards stand before the field, for the eye and for Tab.
    auto& last = f.field("On activate - send to target (e.g. cmd+l), profile 4");
    EXPECT_LT(last.mapTo(&f.tab, QPoint()).y(), name.mapTo(&f.tab, QPoint()).y());
    last.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&last, Qt::Key_Tab);
    EXPECT_TRUE(name.hasFocus());
}

} // namespace
} // namespace quenthisar
