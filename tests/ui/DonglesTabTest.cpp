// SPDX-License-Identifier: MIT
#include "UI/Qt/DonglesTab.h"
#include "UI/Qt/SpeedSlider.h"
#include "UI/Qt/TextField.h"
#include "ui/UiFixture.h"

#include <QAccessible>
#include <QLabel>

namespace quenthisar {
namespace {

struct DonglesTabTest : testing::Test, UiFixture {
    DonglesTab tab{{state, {}}};

    DonglesTabTest() { present(tab); }

    TextField& nickname() {
        return controlNamed<TextField>(tab, "Nickname of Zandrovelkin (AAAA)");
    }
    SpeedSlider& slider() { return controlNamed<SpeedSlider>(tab, "Speed of Zandrovelkin (AAAA)"); }
    bool shows(const QString& text) const {
        for (const auto* label : tab.findChildren<QLabel*>())
            if (label->isVisible() && label->text() == text) return true;
        return false;
    }
};

TEST_F(DonglesTabTest, TypingSurvivesWhateverIsPublished) {
    nickname().setFocus();
    for (const char letter : std::string("Desk PC ")) {
        QTest::keyClick(&nickname(), letter);
        publishDongles();
    }
    EXPECT_TRUE(nickname().hasFocus());
    EXPECT_EQ(nickname().text(), "Desk PC ");
    EXPECT_EQ(state.nicknames->at(A), "Desk PC");

    // In its middle, where a text that is set anew would take the cursor away.
    nickname().setCursorPosition(4);
    state.dongles.modify([](auto& list) {
        std::ranges::reverse(list);
        list.push_back({C, "Third"});
    });
    settle();
    QTest::keyClicks(&nickname(), "top");
    EXPECT_EQ(nickname().text(), "Desktop PC ");
    slider().setFocus();
    EXPECT_EQ(nickname().text(), "Desktop PC") << "left, it shows what is stored";
    QAccessible::queryAccessibleInterface(&nickname())->setText(QAccessible::Value, "");
    EXPECT_FALSE(state.nicknames->contains(A));
}

TEST_F(DonglesTabTest, ASpeedIsWrittenWhenItIsSetAndNotWhenItIsShown) {
    state.setSensitivity(5.0, A); // beyond the slider
    defaults.writes.clear();
    publishDongles();
    EXPECT_TRUE(shows("5.00x"));
    EXPECT_EQ(state.sensitivities->at(A), 5.0);
    EXPECT_TRUE(defaults.writes.empty());

    QTest::keyClick(&slider(), Qt::Key_End); // where it is
    EXPECT_EQ(state.sensitivities->at(A), 3.0);
    QTest::keyClick(&slider(), Qt::Key_Home);
    settle();
    EXPECT_TRUE(shows("0.25x"));
    EXPECT_EQ(state.sensitivities->at(A), 0.25);
    auto* speed = QAccessible::queryAccessibleInterface(&slider())->valueInterface();
    ASSERT_TRUE(speed);
    speed->setCurrentValue(1.5);
    EXPECT_EQ(state.sensitivities->at(A), 1.5);
    EXPECT_EQ(defaults.writes.size(), 3U);
}

} // namespace
} // namespace quenthisar
