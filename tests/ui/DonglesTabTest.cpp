// SPDX-License-Identifier: MIT
#include "UI/Qt/DonglesTab.h"
#include "UI/Qt/SpeedSlider.h"
#include "UI/Qt/Switch.h"
#include "UI/Qt/TextField.h"
#include "ui/UiFixture.h"

#include <QAccessible>
#include <QLabel>
#include <QPushButton>
#include <QStyleOptionSlider>

namespace quenthisar {
namespace {

using State = DongleConnectionState;

struct DonglesTabTest : testing::Test, UiFixture {
    std::vector<std::string> calls;
    bool isRefused = false;
    DonglesTab tab{{state,
                    {
                        .connect = [this](const Uuid&) { calls.emplace_back("connect"); },
                        .disconnect = [this](const Uuid&) { calls.emplace_back("disconnect"); },
                        .identify = [this](const Uuid&) { calls.emplace_back("identify"); },
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
    const auto before = middle(), held = before + QPoint(6, 0);
    QTest::mousePress(&slider(), Qt::LeftButton, {}, held);
    EXPECT_TRUE(defaults.writes.empty());
    QTest::mouseMove(&slider(), held + QPoint(40, 0));
    EXPECT_NEAR(middle().x(), before.x() + 40, 1);
    EXPECT_EQ(state.sensitivities->at(A), slider().shown());
}

TEST_F(DonglesTabTest, TheLinkDecidesWhatCanBeDone) {
    setLink(State::connected);
    EXPECT_FALSE(button("Connect").isVisible());
    button("Identify").click();
    button("Disconnect").setFocus();
    button("Disconnect").click();
    setLink(State::disconnected);
    EXPECT_FALSE(button("Identify").isVisible());
    EXPECT_FALSE(button("Disconnect").isVisible());
    EXPECT_TRUE(button("Connect").hasFocus()) << "the keyboard stays with what is replaced";
    button("Connect").click();
    setLink(State::connecting);
    EXPECT_FALSE(button("Connect").isVisible());
    EXPECT_TRUE(shows("Connecting..."));
    EXPECT_TRUE(nickname().hasFocus());
    EXPECT_EQ(calls, (std::vector<std::string>{"identify", "disconnect", "connect"}));
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

TEST_F(DonglesTabTest, TellsWhoHasTheInputAndWhatIsMissing) {
    auto& grant = *tab.findChild<QPushButton*>();
    grant.click();
    EXPECT_EQ(calls, std::vector<std::string>{"prompt"});
    tab.hide(); // it rests until it is shown again
    state.axTrusted = true;
    state.bluetoothState = "On";
    state.activeMode = "<b>A</b>  desk\n\u202Ewith marks";
    state.dongles = {};
    settle();
    tab.show();
    EXPECT_FALSE(grant.isVisible());
    EXPECT_TRUE(shows("Bluetooth: On"));
    EXPECT_TRUE(shows("Active: <b>A</b>  desk with marks"));
    EXPECT_TRUE(shows("No dongles found. Power one on - it connects automatically."));
}

TEST_F(DonglesTabTest, ALongNameDoesNotWidenTheTab) {
    const auto before = tab.minimumSizeHint().width();
    const std::string name(200, 'W');
    state.activeMode = name;
    state.dongles.modify([&](auto& list) { list.front().name = name; });
    settle();
    EXPECT_EQ(tab.minimumSizeHint().width(), before);
    // What tells dongles of one name apart is seen all the same.
    const auto& field =
        controlNamed<TextField>(tab, "Nickname of " + QString::fromStdString(name) + " (AAAA)");
    EXPECT_TRUE(field.placeholderText().endsWith("AAAA)")) << field.placeholderText().toStdString();
    EXPECT_LE(field.fontMetrics().horizontalAdvance(field.placeholderText()), field.width());
}

} // namespace
} // namespace quenthisar
