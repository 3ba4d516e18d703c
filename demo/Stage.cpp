// SPDX-License-Identifier: MIT
#include "Stage.h"

#include "DeskLines.h"
#include "ReportLine.h"

#include <QElapsedTimer>

#include <algorithm>
#include <stdexcept>

namespace quenthisar::demo {

namespace {

using namespace std::chrono_literals;

constexpr auto oneTry = 150ms;
const QString screenSize = QStringLiteral("1280x800");

bool hasMouseReport(const QStringList& lines) {
    return std::ranges::any_of(reportLines(lines), &ReportLine::isMouse);
}

/// Calls `attempt` until it succeeds.
bool retry(const std::function<bool()>& attempt, std::chrono::milliseconds limit) {
    QElapsedTimer elapsed;
    elapsed.start();
    do {
        if (attempt()) return true;
    } while (elapsed.elapsed() < limit.count());
    return false;
}

} // namespace

Stage::Stage(const Options& options)
    : hostServer(screenSize, frameFolder.path()), targetServer(screenSize),
      hostFrames(frameFolder.path()), host(hostServer.display()), target(targetServer.display()),
      hands(host), hostDesk(options.programs, QStringLiteral("host"), hostServer.display()),
      targetDesk(options.programs, QStringLiteral("target"), targetServer.display()),
      rig({.programs = options.programs,
           .hostDisplay = hostServer.display(),
           .targetDisplay = targetServer.display(),
           .cornerSlam = options.cornerSlam,
           .onDongleLine = options.onDongleLine}),
      chord(returnChord(host)) {
    if (chord.isEmpty()) throw std::runtime_error("the keymap lacks a key of the return chord");
    host.switchOffAcceleration();
    target.switchOffAcceleration();
}

bool Stage::cross(std::chrono::milliseconds limit) {
    const auto attempt = [this] {
        const auto mark = rig.dongle().mark();
        // Off the edge first: after a return, an edge that the pointer never left is not armed.
        hands.moveBy({-60, 0});
        for (auto before = host.pointer(); before;) {
            hands.moveBy({40, 0});
            const auto after = host.pointer();
            if (after == before) break;
            before = after;
        }
        hands.moveBy({0, 1});
        hands.moveBy({0, -1});
        return rig.dongle().waitFor(mark, hasMouseReport, oneTry);
    };
    return retry(attempt, limit) && settle();
}

bool Stage::settle() {
    const auto mark = rig.dongle().mark();
    hands.key(chord.front(), true);
    hands.key(chord.front(), false);
    const auto hasKey = [](const QStringList& lines) {
        const auto reports = reportLines(lines);
        const auto down = std::ranges::find_if(reports, &ReportLine::isKeyboard);
        return std::any_of(down, reports.end(), [](const ReportLine& report) {
            return report.isKeyboard() && report.isAllUp();
        });
    };
    return rig.dongle().waitFor(mark, hasKey, 5s);
}

bool Stage::hostPointerMoves(std::chrono::milliseconds limit) {
    const auto attempt = [this] {
        const auto before = host.pointer();
        hands.moveBy({-40, 0});
        return waitUntil([&] { return host.pointer() != before; }, oneTry);
    };
    return retry(attempt, limit);
}

bool Stage::hostKeyboardWorks(std::chrono::milliseconds limit) {
    const auto attempt = [this] {
        const auto mark = hostDesk.mark();
        const auto isTyped = [](const QStringList& lines) {
            return DeskLines::typedText(lines).contains(u'h');
        };
        return hands.type(QStringLiteral("h"), 0ms) && hostDesk.waitFor(mark, isTyped, oneTry);
    };
    return retry(attempt, limit);
}

} // namespace quenthisar::demo
