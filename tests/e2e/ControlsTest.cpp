// SPDX-License-Identifier: MIT
#include "demo/Binding.h"
#include "e2e/WindowFixture.h"

#include <QFile>
#include <QJsonArray>

namespace quenthisar::e2e {

namespace {

/// A control, what a person does with it, and where that is stored.
struct Use {
    QString tab, role, name, path;
    /// A field's text, or the value of what is stored by a click, a choice or a key.
    QJsonValue value;

    bool isShownBy(const Accessible& control) const {
        if (role == Role::field) return control.text() == value.toString();
        if (role == Role::slider) return control.value() == value.toDouble();
        if (role == Role::picker) return control.name() == u"Study"; // known as that by now
        return control.isChecked() == value.toBool();
    }
};

} // namespace

/// Every control of the window, on a host with two displays.
class Controls : public WindowFixture {
protected:
    void SetUp() override {
        WindowFixture::SetUp();
        if (HasFatalFailure()) return;
        setMonitor(u"LEFT 640/100x800/100+0+0 screen"_s);
        setMonitor(u"RIGHT 640/100x800/100+640+0 none"_s);
    }

    void setMonitor(const QString& monitor) const {
        demo::ChildProcess xrandr{
            u"xrandr"_s, QStringList{u"--display"_s, stage->hostDisplay(), u"--setmonitor"_s} +
                             monitor.split(u' ')};
        ASSERT_EQ(xrandr.waitForEnd(soon), 0);
    }

    QList<Use> uses() const {
        const auto dongles = u"Dongles"_s, edges = u"Edges"_s, profiles = u"Profiles"_s,
                   settings = u"Settings"_s;
        QList<Use> all{
            {settings, Role::checkBox, u"Corner-slam target cursor on entry"_s, u"cornerSlam"_s,
             true},
            {settings, Role::checkBox, u"Show takeover HUD"_s, u"hudEnabled"_s, false},
            {settings, Role::checkBox, u"Allow switching on shared edges"_s, u"allowSharedEdges"_s,
             true},
            {settings, Role::checkBox, u"Launch at login"_s, {}, true},
            {settings, Role::checkBox, u"Auto-connect configured dongles"_s, u"autoConnect"_s,
             true},
            {settings, Role::checkBox, u"Auto-capture on launch"_s, u"autoCapture"_s, true},
            {dongles, Role::field, u"Nickname of "_s + dongle, u"dongleNicknames/"_s + dongleId,
             u"Study"_s},
            {dongles, Role::slider, u"Speed of "_s + dongle, u"sensitivities/"_s + dongleId, 3},
            {profiles, Role::field, u"Name of profile 1"_s, u"profiles/0/name"_s, u"Work"_s},
            {profiles, Role::field, u"On activate - run on Mac (shell), profile 1"_s,
             u"profiles/0/activateCommand"_s, u"echo $HOME > \"a b\""_s},
            {profiles, Role::field, u"On deactivate - run on Mac (shell), profile 1"_s,
             u"profiles/0/deactivateCommand"_s, u"m1ddc set input 17; exit"_s},
            {profiles, Role::field, u"On activate - send to target (e.g. cmd+l), profile 1"_s,
             u"profiles/0/targetCommand"_s, u"cmd+shift+l"_s},
        };
        const auto monitors = stage->host.monitors();
        for (const auto& monitor : monitors) {
            all.append({edges, Role::radioButton, monitor.name, {}, true});
            for (const auto& edge : {u"Top"_s, u"Bottom"_s, u"Left"_s, u"Right"_s})
                all.append({edges, Role::picker, u"%1 edge of %2"_s.arg(edge, monitor.name),
                            u"profiles/0/bindings/%1|%2"_s.arg(
                                edge.toLower(), demo::displayUuid(monitor, monitors)),
                            dongleId});
        }
        return all;
    }

    /// Uses a control as a person does. False if it does not show that.
    bool use(const Use& control) const {
        if (control.role == Role::field) return fill(control.name, control.value.toString());
        if (control.role == Role::picker) return choose(control.name, 1, u"Study"_s);
        const bool isSlider = control.role == Role::slider;
        const auto isDone = [&](const Accessible& each) {
            return isSlider ? each.isFocused() : control.isShownBy(each);
        };
        if (!click(control.role, control.name,
                   [&] { return shows(control.role, control.name, isDone); }))
            return false;
        if (isSlider) press(endKey);
        return true;
    }

    bool isInAutostart() const {
        return QFile::exists(stage->rig.configurationFolder() +
                             u"/autostart/com.vornack.quenthisar.desktop"_s);
    }
};

TEST_F(Controls, AreStoredAtOnceAndShownAgainByTheNextStart) {
    ASSERT_TRUE(openTab(u"Edges"_s));
    EXPECT_TRUE(find(Role::label, u"Between displays - not available"_s));
    EXPECT_FALSE(shows(Role::picker, u"Right edge of LEFT"_s)) << "the displays share it";

    for (const auto& control : uses()) {
        SCOPED_TRACE(control.name.toStdString());
        ASSERT_TRUE(openTab(control.tab) && use(control));
        EXPECT_TRUE(control.path.isEmpty() || isStored(control.path, control.value));
    }
    ASSERT_TRUE(openTab(u"Profiles"_s));
    ASSERT_TRUE(fill(u"New profile name"_s, u"Games\n"_s));
    EXPECT_TRUE(isStored(u"profiles/1/name"_s, u"Games"_s));
    EXPECT_TRUE(waitUntil([this] { return isInAutostart(); }, soon));
    EXPECT_TRUE(demo::reportLines(stage->rig.dongle().since(0)).isEmpty()) << "not connected";
    quit();

    openProgram();
    for (const auto& control : uses()) {
        SCOPED_TRACE(control.name.toStdString());
        ASSERT_TRUE(openTab(control.tab));
        // Which display was looked at is no setting.
        EXPECT_TRUE(control.role == Role::radioButton
                        ? use(control)
                        : becomes(control.role, control.name,
                                  [&](const Accessible& each) { return control.isShownBy(each); }));
    }
    ASSERT_TRUE(openTab(u"Profiles"_s));
    const auto games = settings()[u"profiles"_s][1][u"id"_s];
    ASSERT_TRUE(click(Role::radioButton, u"Make profile Games active"_s,
                      [&] { return settings()[u"activeProfile"_s] == games; }));
    ASSERT_TRUE(click(Role::button, u"Delete profile Work"_s,
                      [&] { return settings()[u"profiles"_s].toArray().size() == 1; }));
    EXPECT_FALSE(shows(Role::button, u"Delete profile Games"_s)) << "the last one";
    EXPECT_TRUE(isStored(u"profiles/0/id"_s, games));
    ASSERT_TRUE(openTab(u"Settings"_s));
    EXPECT_TRUE(click(Role::checkBox, u"Launch at login"_s, [this] { return !isInAutostart(); }));

    // What two of them do at a start, and what a card does.
    ASSERT_TRUE(openTab(u"Dongles"_s));
    EXPECT_TRUE(becomes(Role::checkBox, u"Capture enabled"_s, &Accessible::isChecked));
    EXPECT_TRUE(click(Role::button, u"Identify "_s + dongle, [this] {
        return std::ranges::count_if(reports(), &ReportLine::isMouse) >= 10;
    })) << "a wiggle";
    ASSERT_TRUE(click(Role::button, u"Disconnect "_s + dongle,
                      [this] { return shows(Role::button, u"Connect "_s + dongle); }));
    EXPECT_TRUE(waitForEvent(u"disconnected host"_s));
    quit();
}

} // namespace quenthisar::e2e
