// SPDX-License-Identifier: MIT
#include "UI/Qt/ConfigWindowWidget.h"
#include "ui/UiFixture.h"
#include "unit/AppDelegateFixture.h"

#include <QAccessible>
#include <QComboBox>
#include <QTabWidget>

namespace quenthisar {
namespace {

const QString dongle = "Zandrovelkin (AAAA)";

/// A control, what a person does with it, and whether that is stored.
struct Use {
    QString tab;
    QAccessible::Role role;
    QString name;
    QVariant value; // a field's text, or what is shown after a click, a choice or a key
    std::function<bool(const AppState&)> isStored;
};

/// The whole application and its window, on a host with two displays, found and read as a screen
/// reader does.
struct Controls : testing::Test, AppDelegateFixture {
    QWidget* window = nullptr;

    Controls() {
        displays.add("D2", {1920, 0, 1920, 1080});
        windows.make = [this](const ConfigView& view) {
            auto made = std::make_unique<ConfigWindowWidget>(view, [](WId) {});
            window = made.get();
            return made;
        };
    }

    void start() {
        delegate.reset(); // with its window
        launch(defaults.values.contains("autoCapture"));
        discover({A});
        clock.settle();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window, 10'000));
        ASSERT_TRUE(QTest::qWaitFor(
            [this] { return shown(QAccessible::EditableText, "Nickname of " + dongle); }));
    }

    QWidget* shown(QAccessible::Role role, const QString& name) const {
        for (auto* widget : window->findChildren<QWidget*>()) {
            auto* element = QAccessible::queryAccessibleInterface(widget);
            if (element && element->role() == role && widget->isVisible() &&
                (element->text(QAccessible::Name) == name ||
                 element->text(QAccessible::Description) == name))
                return widget;
        }
        return nullptr;
    }
    void openTab(const QString& name) const {
        auto& tabs = *window->findChild<QTabWidget*>();
        for (int tab = 0; tab < tabs.count(); ++tab)
            if (tabs.tabText(tab) == name) tabs.setCurrentIndex(tab);
        UiFixture::settle();
    }
    void click(QAccessible::Role role, const QString& name) {
        auto* control = shown(role, name);
        ASSERT_TRUE(control) << name.toStdString();
        QTest::mouseClick(control, Qt::LeftButton);
        clock.settle();
        UiFixture::settle();
    }

    void use(const Use& control) {
        if (control.value.typeId() == QMetaType::Bool) return click(control.role, control.name);
        auto* widget = shown(control.role, control.name);
        ASSERT_TRUE(widget);
        widget->setFocus();
        switch (control.role) {
        case QAccessible::ComboBox: QTest::keyClick(widget, Qt::Key_Down); break;
        case QAccessible::Slider: QTest::keyClick(widget, Qt::Key_End); break;
        default:
            QTest::keyClick(widget, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClicks(widget, control.value.toString());
        }
        UiFixture::settle();
    }
    QVariant valueOf(const Use& control) const {
        auto* widget = shown(control.role, control.name);
        if (!widget) return {};
        auto* element = QAccessible::queryAccessibleInterface(widget);
        switch (control.role) {
        case QAccessible::ComboBox: return element->text(QAccessible::Name);
        case QAccessible::Slider: return element->valueInterface()->currentValue();
        case QAccessible::EditableText: return element->text(QAccessible::Value);
        default: return element->state().checked != 0;
        }
    }
};

QList<Use> uses() {
    using enum QAccessible::Role;
    QList<Use> all{{"Dongles", EditableText, "Nickname of " + dongle, "Study",
                    [](auto& state) { return state.nicknames->at(A) == "Study"; }},
                   {"Dongles", Slider, "Speed of " + dongle, 3.0,
                    [](auto& state) { return state.sensitivities->at(A) == 3; }}};

    using Setting = std::tuple<const char*, Published<bool> AppState::*, bool>;
    for (const auto& [name, setting, value] :
         {Setting{"Corner-slam target cursor on entry", &AppState::cornerSlam, true},
          Setting{"Show takeover HUD", &AppState::hudEnabled, false},
          Setting{"Allow switching on shared edges", &AppState::allowSharedEdges, true},
          Setting{"Launch at login", &AppState::launchAtLogin, true},
          Setting{"Auto-connect configured dongles", &AppState::autoConnect, true},
          Setting{"Auto-capture on launch", &AppState::autoCapture, true}})
        all.append({"Settings", CheckBox, name, value,
                    [=](auto& state) { return *(state.*setting) == value; }});

    using Text = std::tuple<const char*, std::string Profile::*, const char*>;
    for (const auto& [name, field, value] :
         {Text{"Name of profile 1", &Profile::name, "Work"},
          Text{"On activate - run on Mac (shell), profile 1", &Profile::activateCommand,
               "echo $HOME > \"a b\""},
          Text{"On deactivate - run on Mac (shell), profile 1", &Profile::deactivateCommand,
               "m1ddc set input 17; exit"},
          Text{"On activate - send to target (e.g. cmd+l), profile 1", &Profile::targetCommand,
               "cmd+shift+l"}})
        all.append({"Profiles", EditableText, name, value,
                    [=](auto& state) { return state.activeProfile().*field == value; }});

    for (const std::string display : {"D1", "D2"}) {
        const auto name = "Display " + QString::fromStdString(display);
        all.append({"Edges", RadioButton, name, true, [](auto&) { return true; }});
        for (const auto& [title, edge] : {std::pair{"Top", Edge::top},
                                          {"Bottom", Edge::bottom},
                                          {"Left", Edge::left},
                                          {"Right", Edge::right}})
            all.append({"Edges", ComboBox, QString("%1 edge of %2").arg(title, name), "Study",
                        [=](auto& state) { return state.dongleID(display, edge) == A; }});
    }
    return all;
}

TEST_F(Controls, AreStoredAtOnceAndShownAgainByTheNextStart) {
    ASSERT_NO_FATAL_FAILURE(start());
    openTab("Edges");
    EXPECT_TRUE(shown(QAccessible::StaticText, "Between displays - not available"));
    EXPECT_FALSE(shown(QAccessible::ComboBox, "Right edge of Display D1"));

    for (const auto& control : uses()) {
        SCOPED_TRACE(control.name.toStdString());
        openTab(control.tab);
        use(control);
        EXPECT_EQ(valueOf(control), control.value);
        EXPECT_TRUE(control.isStored(state()));
    }
    EXPECT_FALSE(captures());
    ASSERT_NO_FATAL_FAILURE(start());
    for (const auto& control : uses()) {
        SCOPED_TRACE(control.name.toStdString());
        openTab(control.tab);
        if (control.role == QAccessible::RadioButton) use(control); // which one is no setting
        EXPECT_EQ(valueOf(control), control.value);
        EXPECT_TRUE(control.isStored(state()));
    }
    EXPECT_TRUE(captures());
    EXPECT_EQ(dongles[A]->link, PeripheralState::connected);
}

TEST_F(Controls, DoWhatTheySay) {
    using enum QAccessible::Role;
    ASSERT_NO_FATAL_FAILURE(start());
    click(Button, "Connect " + dongle);
    EXPECT_EQ(dongles[A]->link, PeripheralState::connected);
    sent();
    click(Button, "Identify " + dongle);
    clock.advance(std::chrono::seconds{1});
    EXPECT_GE(sent().size(), 10U) << "a wiggle";
    click(Button, "Disconnect " + dongle);
    EXPECT_EQ(dongles[A]->link, PeripheralState::disconnected);
    const Use capture{"Dongles", CheckBox, "Capture enabled", false, {}};
    trust.trusted = false;
    use(capture);
    EXPECT_EQ(trust.prompts, 1);
    EXPECT_EQ(valueOf(capture), false) << "it is refused";
    trust.trusted = true;
    use(capture);
    EXPECT_TRUE(captures());
    EXPECT_EQ(valueOf(capture), true);
    use(capture);
    EXPECT_FALSE(captures());

    openTab("Profiles");
    use({"Profiles", EditableText, "New profile name", "Games", {}});
    click(Button, "Add profile");
    ASSERT_EQ(state().profiles->size(), 2U);
    click(RadioButton, "Make profile Games active");
    EXPECT_EQ(state().activeProfile().name, "Games");
    openTab("Edges");
    QTest::keyClick(shown(ComboBox, "Profile"), Qt::Key_Up);
    EXPECT_EQ(state().activeProfile().name, "Default");
    openTab("Profiles");
    click(Button, "Delete profile Default");
    EXPECT_EQ(state().profiles->size(), 1U);
    EXPECT_FALSE(shown(Button, "Delete profile Games")) << "the last one";
}

} // namespace
} // namespace quenthisar
