// SPDX-License-Identifier: MIT
#include "UI/Qt/ProfilesTab.h"

#include "ui/UiFixture.h"

#include <QAbstractButton>

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

    QAbstractButton& button(const QString& name) const {
        return controlNamed<QAbstractButton>(tab, name);
    }
    void click(const QString& name) {
        QTest::mouseClick(&button(name), Qt::LeftButton);
        settle();
    }
};

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
