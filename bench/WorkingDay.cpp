// SPDX-License-Identifier: MIT
#include "WorkingDay.h"

#include "demo/ConfigurationWindow.h"
#include "demo/Interrupt.h"
#include "demo/ReportLine.h"
#include "demo/SelectionOwner.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace quenthisar::bench {

namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

constexpr auto limit = 20s;
constexpr auto lineDelay = 200ms;
constexpr int keysInFlood = 50; // a second
const QString clipboardText = u"Nothing is stuck."_s;

void require(bool isSo, const char* what) {
    demo::throwIfInterrupted();
    if (!isSo) throw std::runtime_error(std::string{"it did not happen: "} + what);
}

void askDongle(const QString& busAddress, const QString& method, const QVariantList& arguments) {
    auto bus = QDBusConnection::connectToBus(busAddress, u"working day"_s);
    auto message = QDBusMessage::createMethodCall(u"org.quenthisar.VirtualDongle"_s, u"/"_s,
                                                  u"org.quenthisar.VirtualDongle1"_s, method);
    message.setArguments(arguments);
    const bool isDone = bus.call(message).type() == QDBusMessage::ReplyMessage;
    QDBusConnection::disconnectFromBus(u"working day"_s);
    require(isDone, "the virtual dongle's fault");
}

} // namespace

WorkingDay::WorkingDay(const demo::Programs& programs)
    : rig({.programs = programs,
           .hostDisplay = host.display(),
           .targetDisplay = targetServer.display(),
           .lineDelay = lineDelay}) {
    rig.startProgram();
}

void WorkingDay::playRound() {
    try {
        play();
    } catch (const std::exception& error) {
        constexpr qsizetype shown = 8;
        const auto lines = rig.dongle().since(std::max(rig.dongle().mark() - shown, qsizetype{0}));
        throw std::runtime_error(std::string{error.what()} + "; the dongle's last lines:\n" +
                                 lines.join(u'\n').toStdString());
    }
}

void WorkingDay::play() {
    takeOver();
    flood(1'000, 3);
    giveBack();
    takeOver();
    flood(8'000, 2);
    giveBack();
    flood(1'000, 1); // at the host
    typeClipboard();
    openAndCloseWindow();
    takeOver();
    loseLink();
    giveBack();
}

ProcessState WorkingDay::state() {
    const auto state = processState(rig.quenthisar().pid());
    require(state.has_value(), "the program goes on");
    return *state;
}

void WorkingDay::takeOver() {
    require(crossing.enter(limit), "a takeover at the edge");
}

void WorkingDay::giveBack() {
    crossing.pressReturnChord();
    require(crossing.hostPointerMoves(limit), "the return by the chord");
    const auto isReleased = [this] { return target.held() == demo::XClient::Held{}; };
    require(demo::waitUntil(isReleased, limit), "the release of all that was held on the target");
}

void WorkingDay::flood(int motionRate, double seconds) {
    const auto stimuli = Load{"", motionRate, keysInFlood, Kind::key, seconds}.stimuli(1);
    made += inject(host.devices(), stimuli, [this] { rig.dongle().mark(); }).size();
}

void WorkingDay::typeClipboard() {
    const demo::SelectionOwner owner{clipboardText, host.display()};
    auto keys = demo::returnChord(host.client());
    const auto letter = host.client().strokeFor(u'v');
    require(letter.has_value(), "a key for the hotkey");
    keys += letter->keyCode;
    const auto mark = rig.dongle().mark();
    hands.chord(keys);
    const auto isTyped = [](const QStringList& lines) {
        const auto reports = demo::reportLines(lines);
        return std::ranges::count_if(reports, [](const demo::ReportLine& report) {
                   return report.isKeyboard() && !report.isAllUp();
               }) >= clipboardText.size();
    };
    require(rig.dongle().waitFor(mark, isTyped, limit), "the typing of the clipboard");
}

void WorkingDay::openAndCloseWindow() {
    const auto focus = demo::focusedWindow(host.client());
    const auto second = rig.startOnceMore();
    require(second->waitForEnd(limit) == 0, "the end of a second start");
    require(demo::closeConfigurationWindow(host.client(), focus, limit),
            "the window's opening and closing");
}

void WorkingDay::loseLink() {
    const auto mark = rig.dongle().mark();
    askDongle(rig.systemBusAddress(), u"Drop"_s, {QString{}});
    const auto isProbed = [](const QStringList& lines) {
        return std::ranges::any_of(demo::reportLines(lines), &demo::ReportLine::isProbe);
    };
    require(rig.dongle().waitFor(mark, isProbed, limit), "the reconnection");
}

} // namespace quenthisar::bench
