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

} // namespace
} // namespace quenthisar
