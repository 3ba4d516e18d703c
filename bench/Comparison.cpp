// SPDX-License-Identifier: MIT
#include "Comparison.h"

#include "Injection.h"
#include "ProcessTime.h"
#include "Subject.h"

#include "demo/Interrupt.h"

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <unistd.h>

namespace quenthisar::bench {

namespace {

using namespace std::chrono_literals;

constexpr auto arrivalLimit = 10s;
constexpr auto rest = 30ms; // in which what should not come would come

nanoseconds usedBy(const QList<pid_t>& processes) {
    const auto time = processorTime(processes);
    if (!time) throw std::runtime_error("a process under measurement has ended");
    return *time;
}

void pause(Subject& subject, nanoseconds time) {
    for (const auto end = Clock::now() + time; Clock::now() < end;) {
        demo::throwIfInterrupted();
        subject.attend();
        std::this_thread::sleep_for(std::min<nanoseconds>(end - Clock::now(), 20ms));
    }
}

void waitForAll(Subject& subject, const Receiver& receiver, const Stimuli& stimuli) {
    qsizetype downwards = 0;
    std::size_t others = 0;
    for (const auto& each : stimuli) {
        downwards += each.delta.y();
        if (each.kind != Kind::motion) ++others;
    }
    for (const auto end = Clock::now() + arrivalLimit; Clock::now() < end; pause(subject, 1ms)) {
        const auto progress = receiver.progress();
        if (progress.downwards >= downwards && progress.others >= others) break;
    }
    pause(subject, rest);
}

void append(std::vector<nanoseconds>& all, const std::vector<nanoseconds>& more) {
    all.insert(all.end(), more.begin(), more.end());
}

void measure(Subject& subject, double share, Figure& row) {
    const auto stimuli = row.load.stimuli(share);
    const auto processes = subject.processes();
    const Receiver receiver{subject.targetDisplay()};
    subject.takePayloads();
    const auto usedBefore = usedBy(processes), serversBefore = usedBy(subject.servers()),
               dongleBefore = usedBy(subject.dongle());
    const auto made = inject(subject.devices(), stimuli, [&] { subject.attend(); });
    waitForAll(subject, receiver, stimuli);

    row.servers += usedBy(subject.servers()) - serversBefore;
    if (!processes.isEmpty())
        row.processor = row.processor.value_or(0ns) + usedBy(processes) - usedBefore;
    row.dongle += usedBy(subject.dongle()) - dongleBefore;
    if (const auto payloads = subject.takePayloads())
        row.payloads = row.payloads.value_or(0) + *payloads;
    const auto arrivals = receiver.arrivals();
    const auto outcome = compare(stimuli, made, arrivals);
    append(row.latencies, row.load.isMotionOnly() ? outcome.motion : outcome.others);
    if (row.load.isFlood()) append(row.floodMotion, outcome.motion);
    row.events += stimuli.size();
    for (const auto& each : stimuli) row.otherEvents += each.kind != Kind::motion ? 1 : 0;
    row.lost += outcome.lost;
    row.wrong += outcome.wrong;
    if (!made.empty() && !arrivals.empty()) row.duration += arrivals.back().time - made.front();
}

void tell(const char* what, int round, int rounds) {
    if (::isatty(STDERR_FILENO) != 0)
        std::fprintf(stderr, "\r\033[K%s, round %d of %d", what, round, rounds);
}

void endTelling() {
    if (::isatty(STDERR_FILENO) != 0) std::fputs("\r\033[K", stderr);
}

bool isWanted(const Extent& extent, std::string_view name) {
    return name.find(extent.only) != std::string_view::npos;
}

std::vector<Figure> measureLoads(const std::array<Subject*, 3>& subjects, const Extent& extent) {
    std::vector<Figure> rows;
    for (const auto& load : allLoads()) {
        if (!isWanted(extent, load.name)) continue;
        for (const auto* subject : subjects)
            rows.push_back({.load = load, .subject = subject->name()});
    }
    for (int round = 1; round <= extent.rounds; ++round) {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            tell(rows[i].load.name, round, extent.rounds);
            measure(*subjects[i % subjects.size()], extent.share, rows[i]);
        }
    }
    endTelling();
    return rows;
}

std::vector<Usage> measureUsages(ProgramSubject& program, const Extent& extent) {
    std::vector<Usage> result;
    const auto add = [&](const char* name, double allowed, const auto& meanwhile) {
        if (!isWanted(extent, name)) return;
        const auto before = usedBy(program.programOnly());
        const auto start = Clock::now();
        meanwhile();
        result.push_back({.name = name,
                          .allowed = allowed,
                          .duration = Clock::now() - start,
                          .processor = usedBy(program.programOnly()) - before});
    };
    const auto idle = [&] { pause(program, extent.idle); };
    const auto move = [&](int rate) {
        const auto seconds = std::chrono::duration<double>{extent.local}.count();
        const auto stimuli = Load{"", rate, 0, Kind::motion, seconds}.stimuli(1);
        inject(program.devices(), stimuli, [&] { program.attend(); });
    };
    add("idle in a takeover", 0.1, idle);
    program.leave();
    pause(program, rest);
    add("idle at the host", 0.1, idle);
    add("local mode, 1,000 moves a second", 4, [&] { move(1'000); });
    add("local mode, 8,000 moves a second", 15, [&] { move(8'000); });
    return result;
}

} // namespace

Figures measure(const demo::Programs& programs, const QString& floorProgram, const Extent& extent) {
    const auto direct = startDirect();
    const auto floor = startFloor(floorProgram);
    const auto program = ProgramSubject::start(programs);
    Figures result;
    result.rows = measureLoads({direct.get(), floor.get(), program.get()}, extent);
    result.usages = measureUsages(*program, extent);
    return result;
}

} // namespace quenthisar::bench
