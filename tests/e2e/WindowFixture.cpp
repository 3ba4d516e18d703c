// SPDX-License-Identifier: MIT
#include "e2e/WindowFixture.h"

#include "demo/Binding.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

namespace quenthisar::e2e {

using namespace Qt::StringLiterals;

namespace {

/// How long one of several tries may take.
constexpr auto oneTry = 4s;

} // namespace

void WindowFixture::begin(demo::Stage::Options options) {
    demo::provideRuntimeFolder();
    options.programs = demo::Programs::in(QStringLiteral(QUENTHISAR_PROGRAMS));
    options.hasSettings = false;
    options.isAccessible = true;
    try {
        stage = std::make_unique<demo::Stage>(options);
        dongle = stage->rig.dongleName();
        dongleId = demo::dongleUuid(QStringLiteral("C0:FF:EE:00:00:01"));
        openProgram();
    } catch (const std::exception& error) {
        FAIL() << error.what();
    }
}

void WindowFixture::openProgram() {
    stage->rig.openProgram();
    desktop.emplace(stage->rig.sessionBusAddress());
    ASSERT_TRUE(find(Role::tab, QStringLiteral("Dongles")));
}

void WindowFixture::quit() {
    stage->hands.chord({*stage->host.keyCodeOf(controlKey), keyCode(u'q')});
    EXPECT_EQ(stage->rig.quenthisar().waitForEnd(soon), 0);
}

std::optional<Accessible> WindowFixture::find(const QString& role, const QString& name) const {
    auto found = desktop->element(role, name, soon);
    EXPECT_TRUE(found) << "no " << role.toStdString() << " called " << name.toStdString() << " in\n"
                       << desktop->tree().toStdString();
    return found;
}

bool WindowFixture::shows(const QString& role, const QString& name) const {
    return desktop->element(role, name, 0ms).has_value();
}

bool WindowFixture::becomes(const QString& role, const QString& name,
                            const std::function<bool(const Accessible&)>& wanted) const {
    const auto isSo = [&] {
        const auto element = desktop->element(role, name, 0ms);
        return element && wanted(*element);
    };
    if (waitUntil(isSo, soon)) return true;
    ADD_FAILURE() << name.toStdString() << " in\n" << desktop->tree().toStdString();
    return false;
}

void WindowFixture::moveTo(QPoint place) const {
    // More than once: it may hit a corner of the screen on its way.
    for (int tries = 0; tries < 3; ++tries)
        if (const auto at = stage->host.pointer(); at && *at != place)
            stage->hands.moveBy(place - *at);
}

bool WindowFixture::click(const QString& role, const QString& name, const Effect& hasEffect) const {
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
    const std::pair<QString, QString> contents[]{{u"Dongles"_s, u"Capture enabled"_s},
                                                 {u"Edges"_s, u"Profile"_s},
                                                 {u"Profiles"_s, u"New profile name"_s},
                                                 {u"Settings"_s, u"Show takeover HUD"_s}};
    const auto content = std::ranges::find(contents, name, &std::pair<QString, QString>::first);
    return click(Role::tab, name, [&] {
        return std::ranges::any_of(
            std::initializer_list<QString>{Role::checkBox, Role::picker, Role::field},
            [&](const QString& role) { return shows(role, content->second); });
    });
}

bool WindowFixture::fill(const QString& name, const QString& text) const {
    const auto isFocused = [&] {
        const auto element = desktop->element(Role::field, name, 0ms);
        return element && element->isFocused();
    };
    if (!click(Role::field, name, isFocused)) return false;
    stage->hands.chord({*stage->host.keyCodeOf(controlKey), keyCode(u'a')});
    return stage->hands.type(text, 0ms);
}

bool WindowFixture::choose(const QString& name, int rowsBelow, const QString& offer) const {
    const auto isOpen = [&] {
        const auto element = desktop->element(Role::picker, name, 0ms);
        return element && element->isExpanded();
    };
    if (!click(Role::picker, name, isOpen)) return false;
    for (int row = 0; row < rowsBelow; ++row) press(downKey);
    press(returnKey);
    return becomes(Role::picker, name, [&](const Accessible& picker) {
        return !picker.isExpanded() && picker.name() == offer;
    });
}

void WindowFixture::press(std::uint32_t keySymbol) const {
    const auto code = stage->host.keyCodeOf(keySymbol);
    ASSERT_TRUE(code);
    stage->hands.chord({*code});
}

bool WindowFixture::isOn(const QString& checkBox) const {
    const auto element = desktop->element(Role::checkBox, checkBox, 0ms);
    return element && element->isChecked();
}

QJsonObject WindowFixture::settings() const {
    QFile file{stage->rig.settingsFile()};
    if (!file.open(QIODevice::ReadOnly)) return {};
    auto all = QJsonDocument::fromJson(file.readAll()).object();
    const auto profiles = all[u"profiles"_s][u"$data"_s].toString().toLatin1();
    all[u"profiles"_s] = QJsonDocument::fromJson(QByteArray::fromBase64(profiles)).array();
    return all;
}

bool WindowFixture::isStored(const QString& path, const QJsonValue& value) const {
    const auto isSo = [&] {
        QJsonValue at = settings();
        for (const auto& step : path.split(u'/'))
            at = at.isArray() ? at[step.toInt()] : at.toObject().value(step);
        return at == value;
    };
    if (waitUntil(isSo, atOnce)) return true;
    ADD_FAILURE() << path.toStdString() << " in\n"
                  << QJsonDocument{settings()}.toJson().toStdString();
    return false;
}

} // namespace quenthisar::e2e
