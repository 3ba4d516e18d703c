// SPDX-License-Identifier: MIT
#include "demo/Binding.h"
#include "e2e/WindowFixture.h"

#include <QFile>
#include <QJsonArray>

namespace quenthisar::e2e {

using namespace Qt::StringLiterals;

namespace {

/// A control, what a person does with it, and where that is stored.
struct Use {
    QString tab, role, name, path;
    /// A field's text, or the value of what is stored by a click, a choice or a key.
    QJsonValue value;
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
        const auto isAt = [&](const auto& wanted) {
            const auto element = desktop->element(control.role, control.name, 0ms);
            return element && wanted(*element);
        };
        const auto isChecked = [&] {
            return isAt(
                [&](const Accessible& each) { return each.isChecked() == control.value.toBool(); });
        };
        if (control.role == Role::field) return fill(control.name, control.value.toString());
        // Known as a name by now.
        if (control.role == Role::picker) return choose(control.name, 1, u"Study"_s);
        if (control.role != Role::slider) return click(control.role, control.name, isChecked);
        const auto isFocused = [&] {
            return isAt([](const Accessible& each) { return each.isFocused(); });
        };
        if (!click(control.role, control.name, isFocused)) return false;
        press(endKey);
        return true;
    }

    bool isShown(const Use& control) const {
        // Which display was looked at is no setting.
        if (control.role == Role::radioButton) return use(control);
        return becomes(control.role, control.name, [&](const Accessible& each) {
            if (control.role == Role::field) return each.text() == control.value.toString();
            if (control.role == Role::slider) return each.value() == control.value.toDouble();
            if (control.role == Role::picker) return each.name() == u"Study";
            return each.isChecked() == control.value.toBool();
        });
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
    EXPECT_TRUE(waitUntil([this] { return isInAutostart(); }, atOnce));
    EXPECT_TRUE(demo::reportLines(stage->rig.dongle().since(0)).isEmpty()) << "not connected";
    quit();

    openProgram();
    for (const auto& control : uses()) {
        SCOPED_TRACE(control.name.toStdString());
        ASSERT_TRUE(openTab(control.tab));
        EXPECT_TRUE(isShown(control));
    }
    // What two of them do at a start.
    ASSERT_TRUE(openTab(u"Dongles"_s));
    EXPECT_TRUE(find(Role::button, u"Disconnect "_s + dongle));
    EXPECT_TRUE(becomes(Role::checkBox, u"Capture enabled"_s,
                        [](const Accessible& each) { return each.isChecked(); }));

    ASSERT_TRUE(openTab(u"Settings"_s));
    EXPECT_TRUE(click(Role::checkBox, u"Launch at login"_s, [this] { return !isInAutostart(); }));
    quit();
}

TEST_F(Controls, OfTheMapAreReachedByKeyboard) {
    ASSERT_TRUE(openTab(u"Edges"_s));
    const auto edits = [&](const QString& display) {
        return becomes(Role::picker, u"Top edge of "_s + display,
                       [](const Accessible&) { return true; });
    };
    EXPECT_TRUE(edits(u"LEFT"_s));
    ASSERT_TRUE(click(Role::radioButton, u"RIGHT"_s,
                      [this] { return shows(Role::picker, u"Top edge of RIGHT"_s); }));
    press(leftKey);
    press(spaceKey);
    EXPECT_TRUE(edits(u"LEFT"_s));
}

TEST_F(Controls, OfACardReachItsDongle) {
    const auto connect = u"Connect "_s + dongle, disconnect = u"Disconnect "_s + dongle;
    const auto capture = u"Capture enabled"_s;
    ASSERT_TRUE(click(Role::button, connect, [&] { return shows(Role::button, disconnect); }));
    EXPECT_FALSE(shows(Role::button, connect));
    EXPECT_TRUE(click(Role::button, u"Identify "_s + dongle, [this] {
        return std::ranges::count_if(reports(), &ReportLine::isMouse) >= 10;
    })) << "a wiggle";

    ASSERT_TRUE(click(Role::checkBox, capture, [&] { return isOn(capture); }));
    ASSERT_TRUE(click(Role::checkBox, capture, [&] { return !isOn(capture); }));

    ASSERT_TRUE(click(Role::button, disconnect, [&] { return shows(Role::button, connect); }));
    EXPECT_FALSE(shows(Role::button, u"Identify "_s + dongle));
    EXPECT_TRUE(waitUntil(
        [this] {
            return stage->rig.dongle().since(0).join(u'\n').contains(u"disconnected host"_s);
        },
        soon));
}

TEST_F(Controls, OfProfilesAddActivateAndDeleteThem) {
    const auto count = [this] { return settings()[u"profiles"_s].toArray().size(); };
    const auto idOf = [this](int position) { return settings()[u"profiles"_s][position][u"id"_s]; };
    const auto newName = u"New profile name"_s;
    const auto started = stage->rig.configurationFolder() + u"/started"_s,
               ended = stage->rig.configurationFolder() + u"/ended"_s;
    ASSERT_TRUE(openTab(u"Profiles"_s));
    EXPECT_FALSE(shows(Role::button, u"Delete profile Default"_s)) << "the last one";
    ASSERT_TRUE(fill(newName, u"Games"_s));
    ASSERT_TRUE(click(Role::button, u"Add profile"_s, [&] { return count() == 2; }));
    EXPECT_TRUE(isStored(u"profiles/1/name"_s, u"Games"_s));
    EXPECT_TRUE(becomes(Role::field, newName,
                        [](const Accessible& field) { return field.text().isEmpty(); }));

    ASSERT_TRUE(
        fill(u"On activate - run on Mac (shell), profile 2"_s, u"touch \"%1\""_s.arg(started)));
    ASSERT_TRUE(
        fill(u"On deactivate - run on Mac (shell), profile 1"_s, u"touch \"%1\""_s.arg(ended)));
    ASSERT_TRUE(isStored(u"profiles/0/deactivateCommand"_s, u"touch \"%1\""_s.arg(ended)));
    ASSERT_TRUE(click(Role::radioButton, u"Make profile Games active"_s,
                      [&] { return settings()[u"activeProfile"_s] == idOf(1); }));
    EXPECT_TRUE(waitUntil([&] { return QFile::exists(started) && QFile::exists(ended); }, soon));

    ASSERT_TRUE(fill(newName, u"Third\n"_s));
    EXPECT_TRUE(isStored(u"profiles/2/name"_s, u"Third"_s));
    ASSERT_TRUE(openTab(u"Edges"_s));
    ASSERT_TRUE(choose(u"Profile"_s, 1, u"Third"_s));
    EXPECT_TRUE(isStored(u"activeProfile"_s, idOf(2)));

    ASSERT_TRUE(openTab(u"Profiles"_s));
    ASSERT_TRUE(click(Role::button, u"Delete profile Games"_s, [&] { return count() == 2; }));
    EXPECT_TRUE(isStored(u"profiles/1/name"_s, u"Third"_s));
    quit();

    openProgram();
    ASSERT_TRUE(openTab(u"Profiles"_s));
    EXPECT_TRUE(becomes(Role::radioButton, u"Make profile Third active"_s,
                        [](const Accessible& marker) { return marker.isChecked(); }));
    EXPECT_FALSE(shows(Role::radioButton, u"Make profile Games active"_s));
    quit();
}

} // namespace quenthisar::e2e
