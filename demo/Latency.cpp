// SPDX-License-Identifier: MIT
#include "Latency.h"

#include "Interrupt.h"
#include "ReportLine.h"
#include "Stage.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <thread>

namespace quenthisar::demo {

namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;
using Clock = std::chrono::steady_clock; // CLOCK_MONOTONIC, like the dongle's

microseconds now() {
    return std::chrono::duration_cast<microseconds>(Clock::now().time_since_epoch());
}

void print(const char* what, std::vector<microseconds> times) {
    std::ranges::sort(times);
    const auto at = [&](std::size_t percent) {
        return static_cast<double>(times[(times.size() - 1) * percent / 100].count()) / 1000;
    };
    std::printf("%-18s %5zu events   median %.3f ms   99th percentile %.3f ms   longest %.3f ms\n",
                what, times.size(), at(50), at(99), at(100));
    std::fflush(stdout);
}

class Measurement {
public:
    Measurement(const Programs& programs, int count) : count(count), stage({.programs = programs}) {
        stage.rig.startProgram();
        if (!stage.cross(20s)) throw std::runtime_error("crossing the edge does not take over");
    }

    bool keys() {
        const auto stroke = stage.host.strokeFor(u'a');
        if (!stroke) throw std::runtime_error("the keymap lacks the key A");
        const auto mark = stage.rig.dongle().mark();
        const auto sent =
            inject(20ms, [&](int i) { stage.hands.key(stroke->keyCode, i % 2 == 0); });
        std::vector<microseconds> times;
        for (const auto& report : arrived(mark, &ReportLine::isKeyboard, sent.size()))
            if (times.size() < sent.size()) times.push_back(report.time - sent[times.size()]);
        return finish("keys", times);
    }

    bool motion() {
        const auto mark = stage.rig.dongle().mark();
        const auto sent = inject(8ms, [&](int) { stage.hands.moveBy({1, 0}); });
        std::vector<microseconds> times;
        // Each motion is of one unit, so that the sum tells which of them a report brings.
        std::size_t sum = 0;
        for (const auto& report : arrived(mark, &ReportLine::isMouse, sent.size())) {
            sum += static_cast<std::size_t>(std::max(0, report.motion().x()));
            while (times.size() < std::min(sum, sent.size()))
                times.push_back(report.time - sent[times.size()]);
        }
        return finish("motion at 125 Hz", times);
    }

private:
    std::vector<microseconds> inject(std::chrono::milliseconds pace,
                                     const std::function<void(int)>& act) {
        std::vector<microseconds> sent;
        auto due = Clock::now();
        for (int i = 0; i < count; ++i) {
            throwIfInterrupted();
            sent.push_back(now());
            act(i);
            stage.rig.dongle().mark(); // a full pipe would stop the dongle
            std::this_thread::sleep_until(due += pace);
        }
        return sent;
    }

    QList<ReportLine> arrived(qsizetype mark, bool (ReportLine::*isWanted)() const,
                              std::size_t wanted) {
        const auto wantedReports = [&](const QStringList& lines) {
            auto reports = reportLines(lines);
            reports.removeIf([&](const ReportLine& report) { return !(report.*isWanted)(); });
            return reports;
        };
        const auto isEnough = [&](const QStringList& lines) {
            std::size_t sum = 0;
            for (const auto& report : wantedReports(lines))
                sum += report.isMouse() ? static_cast<std::size_t>(report.motion().x()) : 1;
            return sum >= wanted;
        };
        stage.rig.dongle().waitFor(mark, isEnough, 2s);
        return wantedReports(stage.rig.dongle().since(mark));
    }

    bool finish(const char* what, const std::vector<microseconds>& times) const {
        if (!times.empty()) print(what, times);
        const auto missing = static_cast<std::size_t>(count) - times.size();
        if (missing > 0) std::printf("%-18s %zu events brought no payload\n", what, missing);
        return missing == 0;
    }

    const int count;
    Stage stage;
};

} // namespace

bool measureLatency(const Programs& programs, int count) {
    Measurement measurement{programs, count};
    const auto keysArrived = measurement.keys();
    return measurement.motion() && keysArrived;
}

} // namespace quenthisar::demo
