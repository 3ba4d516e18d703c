// SPDX-License-Identifier: MIT
#include "e2e/WindowFixture.h"

#include "e2e/ProfileSettings.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace quenthisar::e2e {

void WindowFixture::open(demo::Stage::Options options, const std::function<void()>& prepare) {
    options.isAccessible = true;
    try {
        build(options);
        dongle = stage->rig.dongleName();
        dongleId = stage->rig.dongleId();
        if (prepare) prepare();
        openProgram();
    } catch (const std::exception& error) {
        FAIL() << error.what();
    }
}

void WindowFixture::openProgram() {
    stage->rig.openProgram();
    desktop.emplace(stage->rig.sessionBusAddress());
    ASSERT_TRUE(find(Role::tab, u"Dongles"_s));
}

void WindowFixture::quit() {
    stage->hands.chord({keyCodeOf(controlKey), keyCode(u'q')});
    EXPECT_EQ(stage->rig.quenthisar().waitForEnd(soon), 0);
}

std::optional<Accessible> WindowFixture::find(const QString& role, const QString& name) const {
    auto found = desktop->element(role, name, soon);
    EXPECT_TRUE(found) << "no " << role.toStdString() << " called " << name.toStdString() << " in\n"
                       << desktop->tree().toStdString();
    return found;
}

bool WindowFixture::shows(const QString& role, const QString& name, const Wanted& wanted) const {
    const auto element = desktop->element(role, name, 0ms);
    return element && (!wanted || wanted(*element));
}

bool WindowFixture::becomes(const QString& role, const QString& name, const Wanted& wanted) const {
    if (waitUntil([&] { return shows(role, name, wanted); }, soon)) return true;
    ADD_FAILURE() << name.toStdString() << " in\n" << desktop->tree().toStdString();
    return false;
}

void WindowFixture::moveTo(QPoint place) const {
    // More than once: it may hit a corner of the screen on its way.
    for (int tries = 0; tries < 3; ++tries)
        if (const auto at = stage->host.pointer(); at && *at != place)
            stage->hands.moveBy(place - *at);
}

bool WindowFixture::click(const QString& role, const QString& name,
                          const std::function<bool()>& hasEffect) const {
    constexpr auto oneTry = 4s;
    const auto attempt = [&] {
        // A second click would undo the first one where that was only slow.
        if (hasEffect()) return true;
        const auto element = desktop->element(role, name, oneTry);
        if (!element) return false;
        moveTo(element->center());
        if (stage->host.pointer() != element->center()) return false; // it has moved
        stage->hands.click(1);
        return waitUntil(hasEffect, oneTry);
    };
    if (demo::retry(attempt, soon)) return true;
    ADD_FAILURE() << "clicking " << role.toStdString() << ' ' << name.toStdString()
                  << " has no effect in\n"
                  << desktop->tree().toStdString();
    return false;
}

bool WindowFixture::openTab(const QString& name) const {
    const std::map<QString, std::pair<QString, QString>> contents{
        {u"Dongles"_s, {Role::checkBox, u"Capture enabled"_s}},
        {u"Edges"_s, {Role::picker, u"Profile"_s}},
        {u"Profiles"_s, {Role::field, u"New profile name"_s}},
        {u"Settings"_s, {Role::checkBox, u"Show takeover HUD"_s}}};
    const auto& content = contents.at(name);
    return click(Role::tab, name, [&] { return shows(content.first, content.second); });
}

bool WindowFixture::fill(const QString& name, const QString& text) const {
    if (!click(Role::field, name, [&] { return shows(Role::field, name, &Accessible::isFocused); }))
        return false;
    stage->hands.chord({keyCodeOf(controlKey), keyCode(u'a')});
    return stage->hands.type(text, 0ms);
}

bool WindowFixture::choose(const QString& name, int rowsBelow, const QString& offer) const {
    const auto isOpen = [&] { return shows(Role::picker, name, &Accessible::isExpanded); };
    if (!click(Role::picker, name, isOpen)) return false;
    for (int row = 0; row < rowsBelow; ++row) press(downKey);
    press(returnKey);
    return becomes(Role::picker, name, [&](const Accessible& picker) {
        return !picker.isExpanded() && picker.name() == offer;
    });
}

bool WindowFixture::isOn(const QString& checkBox) const {
    return shows(Role::checkBox, checkBox, &Accessible::isChecked);
}

QJsonObject WindowFixture::settings() const {
    return readSettings(stage->rig.settingsFile());
}

bool WindowFixture::isStored(const QString& path, const QJsonValue& value) const {
    const auto isSo = [&] {
        QJsonValue at = settings();
        for (const auto& step : path.split(u'/'))
            at = at.isArray() ? at[step.toInt()] : at.toObject().value(step);
        return at == value;
    };
    if (waitUntil(isSo, soon)) return true;
    ADD_FAILURE() << path.toStdString() << " in\n"
                  << QJsonDocument{settings()}.toJson().toStdString();
    return false;
}

} // namespace quenthisar::e2e
