// SPDX-License-Identifier: MIT
#include "UI/Qt/DonglesTab.h"
#include "UI/Qt/Colors.h"
#include "UI/Qt/DongleCard.h"
#include "UI/Qt/Label.h"
#include "UI/Qt/SpeedSlider.h"
#include "UI/Qt/Switch.h"
#include "UI/Qt/TextField.h"
#include "ui/UiFixture.h"

#include <QAccessible>
#include <QLayout>
#include <QPushButton>
#include <QStyleOptionSlider>

namespace quenthisar {
namespace {

using State = DongleConnectionState;

struct DonglesTabTest : testing::Test, UiFixture {
    std::vector<std::string> calls;
    bool isRefused = false;
    DonglesTab tab{
        {state,
         {
             .connect = [this](const Uuid& id) { calls.push_back("connect " + id.text()); },
             .disconnect = [this](const Uuid& id) { calls.push_back("disconnect " + id.text()); },
             .identify = [this](const Uuid& id) { calls.push_back("identify " + id.text()); },
             .toggleCapture =
                 [this](bool on) {
                     calls.emplace_back(on ? "capture" : "release");
                     if (!isRefused) state.captureEnabled = on;
                 },
             .promptAX = [this] { calls.emplace_back("prompt"); },
         }}};

    DonglesTabTest() { present(tab); }

    TextField& nickname() {
        return controlNamed<TextField>(tab, "Nickname of Zandrovelkin (AAAA)");
    }
    SpeedSlider& slider() { return controlNamed<SpeedSlider>(tab, "Speed of Zandrovelkin (AAAA)"); }
    QPushButton& button(const QString& action) {
        return controlNamed<QPushButton>(tab, action + " Zandrovelkin (AAAA)");
    }
    long cards() const {
        return std::ranges::count_if(tab.findChildren<QWidget*>(), [](const auto* widget) {
            return dynamic_cast<const DongleCard*>(widget) != nullptr;
        });
    }
    bool shows(const QString& text) const {
        for (const auto* label : tab.findChildren<QLabel*>())
            if (label->isVisible() && label->text() == text) return true;
        return false;
    }
    void setLink(State next) {
        state.dongles.modify([next](auto& list) { list.front().state = next; });
        settle();
    }
};

TEST_F(DonglesTabTest, TypingSurvivesWhateverIsPublished) {
    nickname().setFocus();
    const QString typed = "Desk PC ";
    for (const QChar letter : typed) {
        QTest::keyClicks(&nickname(), QString(letter));
        for (int change = 0; change < 50; ++change) publishDongles();
    }
    EXPECT_TRUE(nickname().hasFocus());
    EXPECT_EQ(nickname().text(), typed);
    EXPECT_EQ(state.nicknames->at(A), "Desk PC");

    // In its middle, where a text that is set anew would take the cursor away.
    nickname().setCursorPosition(4);
    publishDongles();
    QTest::keyClicks(&nickname(), "top");
    EXPECT_EQ(nickname().text(), "Desktop PC ");

    slider().setFocus();
    EXPECT_EQ(nickname().text(), "Desktop PC") << "left, it shows what is stored";
}

TEST_F(DonglesTabTest, WhatIsSetThroughAccessibilityIsStored) {
    auto* field = QAccessible::queryAccessibleInterface(&nickname());
    field->setText(QAccessible::Value, "Desk");
    EXPECT_EQ(state.nicknames->at(A), "Desk");
    field->setText(QAccessible::Value, "");
    EXPECT_FALSE(state.nicknames->contains(A));
    EXPECT_EQ(nickname().placeholderText(), "Zandrovelkin (AAAA)");

    auto* speed = QAccessible::queryAccessibleInterface(&slider())->valueInterface();
    ASSERT_TRUE(speed);
    EXPECT_EQ(speed->currentValue().toDouble(), 1.0);
    speed->setCurrentValue(1.5);
    EXPECT_EQ(state.sensitivities->at(A), 1.5);
}

TEST_F(DonglesTabTest, ShowingASpeedNeverWritesIt) {
    state.setSensitivity(5.0, A);
    defaults.writes.clear();
    for (int change = 0; change < 5; ++change) publishDongles();
    EXPECT_EQ(slider().shown(), 3.0);
    EXPECT_TRUE(shows("5.00x"));
    EXPECT_EQ(state.sensitivities->at(A), 5.0);
    EXPECT_TRUE(defaults.writes.empty());

    slider().setFocus();
    QTest::keyClick(&slider(), Qt::Key_Home);
    settle();
    EXPECT_EQ(state.sensitivities->at(A), 0.25);
    EXPECT_TRUE(shows("0.25x"));
    QTest::keyClick(&slider(), Qt::Key_End);
    EXPECT_EQ(state.sensitivities->at(A), 3.0);
    EXPECT_EQ(defaults.writes, (std::vector<std::string>{"sensitivities", "sensitivities"}));
}

TEST_F(DonglesTabTest, ASpeedFromBeyondTheSliderCanBeSetToItsEnds) {
    const auto end = [this](double stored, const auto& move) {
        state.setSensitivity(stored, A);
        settle();
        defaults.writes.clear();
        move();
        EXPECT_EQ(defaults.writes.size(), 1U);
        return state.sensitivities->at(A);
    };
    const auto key = [this](Qt::Key pressed) {
        return [this, pressed] { QTest::keyClick(&slider(), pressed); };
    };
    const auto readerSets = [this](double speed) {
        return [this, speed] {
            QAccessible::queryAccessibleInterface(&slider())->valueInterface()->setCurrentValue(
                speed);
        };
    };
    EXPECT_EQ(end(5.0, key(Qt::Key_End)), 3.0);
    EXPECT_EQ(end(0.1, key(Qt::Key_Home)), 0.25);
    EXPECT_EQ(end(5.0, readerSets(3.0)), 3.0);
    EXPECT_EQ(end(1.0, key(Qt::Key_End)), 3.0);
}

TEST_F(DonglesTabTest, AHandleStaysUnderThePointerThatHoldsIt) {
    const auto middle = [this] {
        QStyleOptionSlider option;
        option.initFrom(&slider());
        option.minimum = slider().minimum();
        option.maximum = slider().maximum();
        option.sliderPosition = slider().value();
        return slider()
            .style()
            ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider())
            .center();
    };
    const auto before = middle();
    const auto held = before + QPoint(6, 0);
    QTest::mousePress(&slider(), Qt::LeftButton, {}, held);
    EXPECT_EQ(slider().shown(), 1.0);
    EXPECT_TRUE(defaults.writes.empty());
    QTest::mouseMove(&slider(), held + QPoint(40, 0));
    EXPECT_NEAR(middle().x(), before.x() + 40, 1);
    QTest::mouseRelease(&slider(), Qt::LeftButton, {}, held + QPoint(40, 0));
    EXPECT_EQ(state.sensitivities->at(A), slider().shown());
}

TEST_F(DonglesTabTest, TheLinkDecidesWhatCanBeDone) {
    struct Row {
        State link;
        bool identify, connect, connecting, disconnect;
    };
    for (const auto& row : {Row{State::disconnected, false, true, false, false},
                            Row{State::connecting, false, false, true, false},
                            Row{State::connected, true, false, false, true}}) {
        setLink(row.link);
        EXPECT_EQ(button("Identify").isVisible(), row.identify) << rawText(row.link);
        EXPECT_EQ(button("Connect").isVisible(), row.connect) << rawText(row.link);
        EXPECT_EQ(shows("Connecting..."), row.connecting) << rawText(row.link);
        EXPECT_EQ(button("Disconnect").isVisible(), row.disconnect) << rawText(row.link);
    }
    button("Identify").click();
    button("Disconnect").click();
    setLink(State::disconnected);
    button("Connect").click();
    EXPECT_EQ(calls, (std::vector<std::string>{"identify " + A.text(), "disconnect " + A.text(),
                                               "connect " + A.text()}));
}

TEST_F(DonglesTabTest, TheKeyboardStaysWithAButtonThatIsReplaced) {
    setLink(State::disconnected);
    button("Connect").setFocus();
    setLink(State::connected);
    EXPECT_EQ(QApplication::focusWidget(), &button("Disconnect"));
    setLink(State::disconnected);
    EXPECT_EQ(QApplication::focusWidget(), &button("Connect"));
    setLink(State::connecting);
    EXPECT_EQ(QApplication::focusWidget(), &nickname());
    setLink(State::connected);
    EXPECT_EQ(QApplication::focusWidget(), &nickname()) << "not taken from where it is";
}

TEST_F(DonglesTabTest, ARefusedCaptureLeavesTheSwitchOff) {
    auto& capture = *tab.findChild<Switch*>();
    isRefused = true;
    capture.click();
    settle();
    EXPECT_FALSE(capture.isChecked());
    EXPECT_EQ(calls, std::vector<std::string>{"capture"}) << "asked once";

    isRefused = false;
    capture.click();
    EXPECT_TRUE(capture.isChecked());
    state.captureEnabled = false; // the tap has ended
    settle();
    EXPECT_FALSE(capture.isChecked());
    EXPECT_EQ(calls, (std::vector<std::string>{"capture", "capture"})) << "following asks nothing";
}

TEST_F(DonglesTabTest, ACardStaysWithItsDongle) {
    auto* field = &nickname();
    field->setFocus();
    state.dongles.modify([](auto& list) {
        std::ranges::reverse(list);
        list.push_back({C, "Third"});
    });
    settle();
    tab.layout()->activate();
    EXPECT_EQ(&nickname(), field);
    EXPECT_TRUE(field->hasFocus());
    EXPECT_EQ(cards(), 3);
    EXPECT_GT(field->mapTo(&tab, QPoint()).y(),
              controlNamed<TextField>(tab, "Nickname of Other (BBBB)").mapTo(&tab, QPoint()).y());

    state.dongles = {};
    settle();
    EXPECT_EQ(cards(), 0);
    EXPECT_TRUE(shows("No dongles found. Power one on - it connects automatically."));
}

TEST_F(DonglesTabTest, TellsWhoHasTheInputAndWhatIsMissing) {
    auto& grant = *tab.findChild<QPushButton*>();
    ASSERT_EQ(grant.text(), "Grant...");
    EXPECT_TRUE(grant.isVisible());
    grant.click();
    EXPECT_EQ(calls, std::vector<std::string>{"prompt"});
    state.axTrusted = true;
    state.bluetoothState = "On";
    state.activeMode = "<b>Desk</b>";
    settle();
    EXPECT_FALSE(grant.isVisible());
    EXPECT_TRUE(shows("Bluetooth: On"));
    EXPECT_TRUE(shows("Active: <b>Desk</b>"));
    state.activeMode = "A  desk\n\u202Ewith marks";
    settle();
    EXPECT_TRUE(shows("Active: A  desk with marks"));
}

TEST_F(DonglesTabTest, ALongNameDoesNotWidenTheTab) {
    state.activeMode = std::string(200, 'W');
    const DonglesTab other{{state, {}}};
    EXPECT_EQ(other.minimumSizeHint().width(), tab.minimumSizeHint().width());

    // What tells dongles of one name apart is seen all the same.
    state.dongles.modify([](auto& list) { list.front().name = std::string(200, 'W'); });
    settle();
    const auto& field =
        controlNamed<TextField>(tab, "Nickname of " + QString(200, 'W') + " (AAAA)");
    EXPECT_TRUE(field.placeholderText().endsWith("AAAA)")) << field.placeholderText().toStdString();
    EXPECT_LE(field.fontMetrics().horizontalAdvance(field.placeholderText()), field.width());
}

TEST_F(DonglesTabTest, ColoursFollowTheDesktop) {
    const auto previous = QApplication::palette();
    for (const auto ground : {Qt::black, Qt::white}) {
        QApplication::setPalette(QPalette(ground));
        settle(); // the palette
        settle(); // what is drawn with it
        auto* swatch = controlsNamed<QWidget>(tab, "Its colour at the edges and in the panel")[0];
        const auto image = swatch->grab().toImage();
        EXPECT_EQ(image.pixelColor(image.rect().center()), standardColor(Palette::color(A)));
    }
    QApplication::setPalette(previous);
}

TEST_F(DonglesTabTest, EveryControlIsReachedByTab) {
    setLink(State::connected);
    state.axTrusted = true;
    settle();
    auto& capture = *tab.findChild<Switch*>();
    const std::vector<QWidget*> order{&nickname(), &button("Identify"), &button("Disconnect"),
                                      &slider(),
                                      &controlNamed<TextField>(tab, "Nickname of Other (BBBB)")};
    capture.setFocus();
    for (auto* next : order) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), next) << next->accessibleName().toStdString();
    }
}

TEST_F(DonglesTabTest, OffScreenItRestsUntilItIsShownAgain) {
    tab.hide();
    state.bluetoothState = "On";
    settle();
    const auto texts = tab.findChildren<QLabel*>();
    const auto says = [&](const QString& text) {
        return std::ranges::any_of(texts, [&](auto* label) { return label->text() == text; });
    };
    EXPECT_FALSE(says("Bluetooth: On"));
    tab.show();
    EXPECT_TRUE(says("Bluetooth: On"));
}

} // namespace
} // namespace quenthisar
