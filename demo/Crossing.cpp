// SPDX-License-Identifier: MIT
#include "Crossing.h"

#include "ReportLine.h"

#include <algorithm>
#include <stdexcept>

namespace quenthisar::demo {

namespace {

using namespace std::chrono_literals;

constexpr auto oneTry = 150ms;
constexpr auto settleLimit = 3s;

bool hasMouseReport(const QStringList& lines) {
    return std::ranges::any_of(reportLines(lines), &ReportLine::isMouse);
}

} // namespace

Crossing::Crossing(const XClient& client, Rig& itsRig)
    : host(client), rig(itsRig), hands(client), chord(returnChord(client)) {
    if (chord.isEmpty()) throw std::runtime_error("the keymap lacks a key of the return chord");
}

bool Crossing::enter(std::chrono::milliseconds limit) {
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
    // The report may have been one of an earlier takeover, and what settles went to the host then.
    return retry([&] { return attempt() && settle(); }, limit);
}

bool Crossing::settle() {
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
    return rig.dongle().waitFor(mark, hasKey, settleLimit);
}

bool Crossing::hostPointerMoves(std::chrono::milliseconds limit) const {
    const auto attempt = [this] {
        const auto before = host.pointer();
        hands.moveBy({-40, 0});
        return waitUntil([&] { return host.pointer() != before; }, oneTry);
    };
    return retry(attempt, limit);
}

} // namespace quenthisar::demo
