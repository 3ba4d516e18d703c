// SPDX-License-Identifier: MIT
#include "demo/Binding.h"
#include "e2e/Accessible.h"
#include "e2e/StageFixture.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

namespace quenthisar::e2e {

namespace {

constexpr std::uint32_t returnKey = 0xFF0D, downKey = 0xFF54, controlKey = 0xFFE3; // key symbols
const QString button = QStringLiteral("push button"), tab = QStringLiteral("page tab"),
              checkBox = QStringLiteral("check box"), field = QStringLiteral("text"),
              picker = QStringLiteral("combo box"), slider = QStringLiteral("slider");

} // namespace

/// Somebody who has the program for the first time, with nothing but window, mouse and keyboard.
class Newcomer : public StageFixture {
protected:
    void SetUp() override {
        demo::provideRuntimeFolder();
        stage = std::make_unique<demo::Stage>(demo::Stage::Options{
            .programs = demo::Programs::in(QStringLiteral(QUENTHISAR_PROGRAMS)),
            .hasSettings = false,
            .isAccessible = true});
        dongle = stage->rig.dongleName();
        openProgram();
    }

    void openProgram() {
        stage->rig.openProgram();
        desktop.emplace(stage->rig.sessionBusAddress());
    }

    std::optional<Accessible> find(const QString& role, const QString& name) {
        auto found = desktop->element(role, name, soon);
        EXPECT_TRUE(found) << "no " << role.toStdString() << " called " << name.toStdString()
                           << " in\n"
                           << desktop->tree().toStdString();
        return found;
    }

    void moveTo(QPoint place) const {
        // More than once: it may hit a corner of the screen on its way.
        for (int tries = 0; tries < 3; ++tries)
            if (const auto at = stage->host.pointer(); at && *at != place)
                stage->hands.moveBy(place - *at);
    }

    void click(const QString& role, const QString& name) {
        const auto element = find(role, name);
        if (!element) return;
        moveTo(element->center());
        stage->hands.click(1);
    }

    void press(std::uint32_t keySymbol) const {
        const auto code = stage->host.keyCodeOf(keySymbol);
        ASSERT_TRUE(code);
        stage->hands.chord({*code});
    }

    QJsonObject settings() const {
        QFile file{stage->rig.settingsFile()};
        return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                              : QJsonObject{};
    }

    bool isStored(const QString& key, const QJsonValue& value) const {
        if (waitUntil([&] { return settings().value(key) == value; }, soon)) return true;
        ADD_FAILURE() << QJsonDocument{settings()}.toJson().toStdString();
        return false;
    }

    void quit() {
        stage->hands.chord({*stage->host.keyCodeOf(controlKey), keyCode(u'q')});
        EXPECT_EQ(stage->rig.quenthisar().waitForEnd(soon), 0);
    }

    std::optional<AccessibleDesktop> desktop;
    QString dongle;
};

TEST_F(Newcomer, BindsAnEdgeAndFindsAllOfItAgain) {
    click(button, QStringLiteral("Connect ") + dongle);
    ASSERT_TRUE(find(button, QStringLiteral("Disconnect ") + dongle));
    click(checkBox, QStringLiteral("Capture enabled"));

    const auto edge =
        QStringLiteral("Right edge of %1").arg(stage->host.monitors().constFirst().name);
    click(tab, QStringLiteral("Edges"));
    click(picker, edge);
    press(downKey);
    press(returnKey);

    // Back at a plain desk, over the edge, and back home.
    click(tab, QStringLiteral("Dongles"));
    ASSERT_TRUE(stage->cross(soon));
    targetMark = stage->targetDesk.mark();
    ASSERT_TRUE(stage->hands.type(QStringLiteral("First try"), 0ms));
    EXPECT_TRUE(targetGetsText(QStringLiteral("First try")));
    stage->pressReturnChord();
    ASSERT_TRUE(stage->hostPointerMoves(soon));
    EXPECT_TRUE(nothingIsHeldOnTarget());

    click(field, QStringLiteral("Nickname of ") + dongle);
    ASSERT_TRUE(stage->hands.type(QStringLiteral("Desk "), 0ms));
    const auto speed = find(slider, QStringLiteral("Speed of ") + dongle);
    ASSERT_TRUE(speed && speed->setValue(1.5));
    const auto id = demo::dongleUuid(QStringLiteral("C0:FF:EE:00:00:01"));
    EXPECT_TRUE(
        isStored(QStringLiteral("dongleNicknames"), QJsonObject{{id, QStringLiteral("Desk")}}));
    quit();

    openProgram();
    const auto nickname = find(field, QStringLiteral("Nickname of ") + dongle);
    ASSERT_TRUE(nickname);
    EXPECT_EQ(nickname->text(), QStringLiteral("Desk"));
    const auto again = find(slider, QStringLiteral("Speed of ") + dongle);
    ASSERT_TRUE(again);
    EXPECT_NEAR(again->value().value_or(0), 1.5, 0.01);
    click(tab, QStringLiteral("Edges"));
    const auto bound = find(picker, edge);
    ASSERT_TRUE(bound);
    EXPECT_TRUE(waitUntil([&] { return bound->name() == u"Desk"; }, soon))
        << bound->name().toStdString();
    quit();
}

} // namespace quenthisar::e2e
