// SPDX-License-Identifier: MIT
#include "UI/Qt/ConfigTabs.h"
#include "UI/Qt/ConfigWindowWidget.h"
#include "UI/Qt/TextField.h"
#include "ui/UiFixture.h"

#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>

namespace quenthisar {
namespace {

struct ConfigWindowTest : testing::Test, UiFixture {
    int activations = 0;
    ConfigWindowWidget window{{state, {}}, [this](WId) { ++activations; }};

    void open() {
        window.makeKeyAndOrderFront();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window, 10'000));
    }
};

TEST_F(ConfigWindowTest, HasOneSizeButNeverMoreThanItsScreen) {
    open();
    const auto room = window.screen()->availableSize();
    EXPECT_EQ(window.width(), std::min(480, room.width() - 8));
    EXPECT_EQ(window.height(), std::min(628, room.height() - 36));
    EXPECT_EQ(window.minimumSize(), window.maximumSize());
    EXPECT_EQ(window.windowTitle(), "Quenthisar");
    EXPECT_EQ(activations, 1);
}

TEST_F(ConfigWindowTest, ClosesByKeyAndComesBackAsItWas) {
    open();
    auto& tabs = *window.findChild<ConfigTabs*>();
    tabs.setCurrentIndex(3);
    window.move(17, 23);
    settle();
    QTest::keyClick(&window, Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window.isVisible());
    open();
    EXPECT_EQ(window.pos(), QPoint(17, 23));
    EXPECT_EQ(tabs.currentIndex(), 3);
}

TEST_F(ConfigWindowTest, ComesBackToAScreenThatIsThere) {
    open();
    const auto screen = window.screen()->geometry();
    window.move(screen.bottomRight() + QPoint(100, 100));
    settle();
    window.close();
    open();
    EXPECT_TRUE(screen.contains(window.geometry().center()));
}

TEST_F(ConfigWindowTest, ComesBackFromMinimised) {
    open();
    window.showMinimized();
    settle();
    ASSERT_TRUE(window.isMinimized());
    open();
    EXPECT_FALSE(window.isMinimized());
}

TEST_F(ConfigWindowTest, QuitsByKeyWithoutATray) {
    open();
    bool didQuit = false;
    QTimer::singleShot(0, [&] {
        QTest::keyClick(&window, Qt::Key_Q, Qt::ControlModifier);
        didQuit = true;
    });
    QTimer::singleShot(10'000, qApp, [] { QApplication::exit(1); });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_TRUE(didQuit);
}

TEST_F(ConfigWindowTest, LongContentScrolls) {
    std::vector<Dongle> many;
    for (int i = 0; i < 20; ++i) many.push_back({Uuid::random(), "Zandrovelkin BLE"});
    state.dongles = many;
    open();
    settle();
    auto* last = window.findChildren<TextField*>().at(19);
    last->setFocus(Qt::TabFocusReason);
    const auto pages = window.findChildren<QScrollArea*>();
    auto& page =
        **std::ranges::find_if(pages, [&](const auto* each) { return each->isAncestorOf(last); });
    page.ensureWidgetVisible(last);
    EXPECT_TRUE(window.rect().contains(last->mapTo(&window, last->rect().center())));
    for (const auto* area : pages)
        EXPECT_LE(area->widget()->minimumSizeHint().width(), area->viewport()->width());

    auto& bar = *page.verticalScrollBar();
    bar.setValue(0);
    QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.rect().center());
    EXPECT_EQ(bar.value(), bar.pageStep());
    const auto drag = [&bar](int from, int to) {
        QTest::mousePress(&bar, Qt::LeftButton, {}, {bar.width() / 2, from});
        QTest::mouseMove(&bar, {bar.width() / 2, to});
        QTest::mouseRelease(&bar, Qt::LeftButton, {}, {bar.width() / 2, to});
        return bar.value();
    };
    bar.setValue(0);
    EXPECT_EQ(drag(5, bar.height() + 5), bar.maximum());
    EXPECT_EQ(drag(bar.height() - 5, -5), 0);
}

TEST_F(ConfigWindowTest, ANewProfileIsSeen) {
    for (int i = 0; i < 10; ++i) state.addProfile({});
    open();
    window.findChild<ConfigTabs*>()->setCurrentIndex(2);
    settle();
    auto& name = controlNamed<TextField>(window, "New profile name");
    name.setFocus(Qt::TabFocusReason);
    QTest::keyClicks(&name, "Twelfth");
    QTest::keyClick(&name, Qt::Key_Return);
    settle();
    settle(); // its place
    const auto isSeen = [](const QWidget& widget) {
        return widget.visibleRegion().boundingRect() == widget.rect();
    };
    EXPECT_TRUE(isSeen(controlNamed<TextField>(window, "Name of profile 12")));
    EXPECT_TRUE(isSeen(name));
}

} // namespace
} // namespace quenthisar
