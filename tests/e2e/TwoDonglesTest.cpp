// SPDX-License-Identifier: MIT
#include "demo/Binding.h"
#include "e2e/StageFixture.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

namespace quenthisar::e2e {

namespace {

const QString screenSize = QStringLiteral("1280x800");
const QString leftDongle = QStringLiteral("C0:FF:EE:00:00:01");
const QString rightDongle = QStringLiteral("C0:FF:EE:00:00:02");

/// A host between two targets, each with a dongle and a desk.
class TwoDongles : public testing::Test {
protected:
    void SetUp() override {
        demo::provideRuntimeFolder();
        host.switchOffAcceleration();
        ASSERT_FALSE(chord.isEmpty());
        ASSERT_TRUE(dongles.waitForLine(QStringLiteral("ready"), soon));
        ASSERT_TRUE(writeSettings());
        program.emplace(programs.quenthisar, QStringList{},
                        demo::ChildProcess::Environment{
                            {QStringLiteral("DISPLAY"), hostServer.display()},
                            {QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), systemBus.address()},
                            {QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), sessionBus.address()},
                            {QStringLiteral("XDG_CONFIG_HOME"), folder.path()},
                            {QStringLiteral("XDG_SESSION_TYPE"), QStringLiteral("x11")},
                            {QStringLiteral("WAYLAND_DISPLAY"), QString{}},
                            {QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb")}});
        for (const auto& address : {leftDongle, rightDongle})
            ASSERT_TRUE(dongles.waitFor(
                0,
                [&](const QStringList& lines) {
                    return std::ranges::any_of(demo::reportLines(lines), [&](const auto& report) {
                        return report.isProbe() && report.address == address;
                    });
                },
                soon));
    }

    bool writeSettings() {
        const auto edge = demo::rightEdge(host);
        if (!edge) return false;
        auto settings =
            QJsonDocument::fromJson(
                demo::settingsText({.displayUuid = edge->displayUuid, .dongleUuid = {}}))
                .object();
        settings[QStringLiteral("edgeBindings")] = QJsonObject{
            {QStringLiteral("left|") + edge->displayUuid, demo::dongleUuid(leftDongle)},
            {QStringLiteral("right|") + edge->displayUuid, demo::dongleUuid(rightDongle)}};
        const QDir place{folder.path() + QStringLiteral("/quenthisar")};
        QFile file{place.filePath(QStringLiteral("defaults.json"))};
        return place.mkpath(QStringLiteral(".")) && file.open(QIODevice::WriteOnly) &&
               file.write(QJsonDocument{settings}.toJson()) > 0;
    }

    bool hasMouseReport(qsizetype mark, const QString& address) {
        return std::ranges::any_of(demo::reportLines(dongles.since(mark)), [&](const auto& report) {
            return report.isMouse() && report.address == address;
        });
    }

    /// Moves on in one direction until motion arrives at the dongle there.
    bool cross(int direction, const QString& address) {
        const auto mark = dongles.mark();
        return waitUntil(
            [&] {
                hands.moveBy({40 * direction, 0});
                return hasMouseReport(mark, address);
            },
            soon);
    }

    static bool typed(demo::Desk& desk, qsizetype mark, const QString& text) {
        return desk.waitFor(
            mark,
            [&](const QStringList& lines) { return demo::DeskLines::typedText(lines) == text; },
            soon);
    }

    demo::Programs programs = demo::Programs::in(QStringLiteral(QUENTHISAR_PROGRAMS));
    QTemporaryDir folder;
    demo::XServer hostServer{screenSize}, leftServer{screenSize}, rightServer{screenSize};
    demo::XClient host{hostServer.display()}, left{leftServer.display()},
        right{rightServer.display()};
    demo::Hands hands{host};
    QList<std::uint8_t> chord = demo::returnChord(host);
    demo::Desk leftDesk{programs, QStringLiteral("target"), leftServer.display()};
    demo::Desk rightDesk{programs, QStringLiteral("target"), rightServer.display()};
    demo::PrivateBus systemBus, sessionBus;
    demo::Recorder dongles{programs.dongle,
                           {QStringLiteral("--address"), leftDongle, QStringLiteral("--address"),
                            rightDongle, QStringLiteral("--display"), leftServer.display(),
                            QStringLiteral("--display"), rightServer.display()},
                           {{QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), systemBus.address()}}};
    std::optional<demo::ChildProcess> program;
};

TEST_F(TwoDongles, GetTheInputOfTheirOwnEdgeInTurn) {
    struct Side {
        int direction;
        QString address;
        demo::Desk& desk;
        demo::XClient& target;
    };
    const Side sides[] = {{+1, rightDongle, rightDesk, right},
                          {-1, leftDongle, leftDesk, left},
                          {+1, rightDongle, rightDesk, right}};
    for (int turn = 0; turn < 3; ++turn) {
        const auto& side = sides[turn];
        ASSERT_TRUE(cross(side.direction, side.address)) << "turn " << turn;
        const auto text = QStringLiteral("Turn %1.").arg(turn);
        const auto mark = side.desk.mark();
        const auto others = dongles.mark();
        ASSERT_TRUE(hands.type(text, 0ms));
        EXPECT_TRUE(typed(side.desk, mark, text)) << text.toStdString();
        hands.chord(chord);
        EXPECT_TRUE(waitUntil([&] { return side.target.held() == demo::XClient::Held{}; }, atOnce));
        EXPECT_TRUE(
            std::ranges::all_of(demo::reportLines(dongles.since(others)), [&](const auto& report) {
                return report.address == side.address;
            }));
    }
}

} // namespace

} // namespace quenthisar::e2e
