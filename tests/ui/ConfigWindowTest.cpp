// SPDX-License-Identifier: MIT
#include "UI/Qt/ConfigTabs.h"
#include "UI/Qt/ConfigWindowWidget.h"
#include "UI/Qt/TextField.h"
#include "ui/UiFixture.h"

#include <QScreen>
#include <QScrollArea>

namespace quenthisar {
namespace {

struct ConfigWindowTest : testing::Test, UiFixture {
    ConfigWindowWidget window{{state, {}}, [](WId) {}};

    void open() {
        window.makeKeyAndOrderFront();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window, 10'000));
        settle();
    }
};

TEST_F(ConfigWindowTest, IsNeverMoreThanItsScreenAndComesBackToOneThatIsThere) {
    open();
    EXPECT_LE(window.height(), window.screen()->availableSize().height() - 36);
    const auto screen = window.screen()->geometry();
    window.move(screen.bottomRight() + QPoint(100, 100));
    settle();
    QTest::keyClick(&window, Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window.isVisible());
    open();
    EXPECT_TRUE(screen.contains(window.geometry().center()));
}

TEST_F(ConfigWindowTest, ANewProfileIsSeen) {
    for (int i = 0; i < 10; ++i) state.addProfile({});
    open();
    // What is on them comes with the first look at them.
    for (const int tab : {1, 3, 2}) window.findChild<ConfigTabs*>()->setCurrentIndex(tab);
    settle();
    auto& name = controlNamed<TextField>(window, "New profile name");
    name.setFocus(Qt::TabFocusReason);
    QTest::keyClicks(&name, "Twelfth");
    QTest::keyClick(&name, Qt::Key_Return);
    settle();
    settle(); // its place
    for (const auto* page : window.findChildren<QScrollArea*>())
        EXPECT_LE(page->widget()->minimumSizeHint().width(), page->viewport()->width());
    const auto isSeen = [](const QWidget& widget) {
        return widget.visibleRegion().boundingRect() == widget.rect();
    };
    EXPECT_TRUE(isSeen(controlNamed<TextField>(window, "Name of profile 12")));
    EXPECT_TRUE(isSeen(name));
}

} // namespace
} // namespace quenthisar
