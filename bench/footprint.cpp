// SPDX-License-Identifier: MIT
// What the program takes while it does little: to start, to wait, to return, and in memory.
#include "Command.h"
#include "Limits.h"
#include "ProcessState.h"
#include "ProcessTime.h"
#include "Returns.h"
#include "StartUp.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <thread>

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace quenthisar;
using namespace quenthisar::bench;

constexpr auto limit = 20s;
constexpr auto catchUpLimit = 120s;     // of what a flood leaves unread
constexpr double memory = 45, more = 1; // MB
constexpr double startOfEmpty = 1.5, idleShare = 0.1, idleWakeUps = 2, returnTime = 5;

struct Extent {
    int starts = 15, returns = 100;
    std::chrono::seconds idle = 30s;
    int events = 10'000'000;
};

double milliseconds(nanoseconds time) {
    return std::chrono::duration<double, std::milli>{time}.count();
}

double at(std::vector<nanoseconds> times, double share) {
    std::ranges::sort(times);
    const auto last = static_cast<double>(times.size() - 1);
    return milliseconds(times[static_cast<std::size_t>(last * share)]);
}

void print(const char* what, const std::vector<nanoseconds>& times) {
    std::printf("%-34s %6zu times: median %8.2f ms, 99th percentile %8.2f ms, most %8.2f ms\n",
                what, times.size(), at(times, 0.5), at(times, 0.99), at(times, 1));
}

Limit startLimit(const demo::Programs& programs, const QString& emptyWindow, int rounds) {
    const auto times = measureStartUp(programs, emptyWindow, rounds);
    print("start to picture, empty window", times.empty);
    print("start to picture, program", times.program);
    return {"start to the window's picture, times an empty window's",
            at(times.program, 0.5) / at(times.empty, 0.5), startOfEmpty};
}

/// The program at a host, its window opened once and closed.
class Usual {
public:
    explicit Usual(const demo::Programs& programs)
        : rig({.programs = programs,
               .hostDisplay = host.display(),
               .targetDisplay = target.display(),
               .lineDelay = 500ms}) {
        rig.startProgram();
    }

    double megabytes() {
        const auto state = processState(program());
        if (!state) throw std::runtime_error("the program has ended");
        return static_cast<double>(state->residentInAll) * 1024 / 1e6;
    }

    std::vector<Limit> idle(std::chrono::seconds time) {
        // What a start and a takeover leave to do is over by then.
        std::this_thread::sleep_for(std::min<std::chrono::seconds>(time, 5s));
        const auto usedBefore = used();
        const auto wokenBefore = wakeUps(program());
        const auto start = Clock::now();
        std::this_thread::sleep_for(time);
        const auto seconds = std::chrono::duration<double>{Clock::now() - start}.count();
        const auto usedNow = std::chrono::duration<double>{used() - usedBefore}.count();
        long woken = 0; // but those threads that have ended meanwhile
        for (const auto& [thread, count] : wakeUps(program())) {
            const auto before = wokenBefore.find(thread);
            woken += count - (before == wokenBefore.end() ? 0 : before->second);
        }
        return {{"idle: % of a core", 100 * usedNow / seconds, idleShare},
                {"idle: wake-ups a second", static_cast<double>(woken) / seconds, idleWakeUps}};
    }

    Limit returns(int times) {
        const auto result = measureReturns(host, crossing, times);
        print("return, last key to local input", result);
        return {"return, last key to local input: ms, 99th percentile", at(result, 0.99),
                returnTime};
    }

    /// Half of it in a takeover.
    void flood(int events) {
        constexpr int rate = 25'000;
        const auto half = Load{"", rate, 50, Kind::key, 0.5 * events / rate}.stimuli(1);
        if (!crossing.enter(limit))
            throw std::runtime_error("crossing the edge does not take over");
        inject(host.devices(), half, [this] { rig.dongle().mark(); });
        crossing.pressReturnChord();
        if (!crossing.hostPointerMoves(catchUpLimit))
            throw std::runtime_error("the return chord does not return");
        inject(host.devices(), half, [] {});
        // It comes after all the motion.
        if (!crossing.enter(catchUpLimit))
            throw std::runtime_error("crossing the edge does not take over");
        crossing.pressReturnChord();
        if (!crossing.hostPointerMoves(limit))
            throw std::runtime_error("the return chord does not return");
    }

private:
    pid_t program() { return rig.quenthisar().pid(); }
    nanoseconds used() { return processorTime({program()}).value_or(nanoseconds{}); }

    const Host host;
    const demo::XServer target;
    demo::Rig rig;
    demo::Crossing crossing{host.client(), rig};
};

Extent extentOf(const QCommandLineParser& parser) {
    if (parser.isSet(u"smoke"_s)) return {.starts = 1, .returns = 2, .idle = 1s, .events = 5'000};
    if (parser.isSet(u"quick"_s))
        return {.starts = 5, .returns = 20, .idle = 10s, .events = 500'000};
    return {};
}

int run(const QCommandLineParser& parser) {
    const auto folder = parser.value(u"programs"_s);
    const auto programs = demo::Programs::in(folder);
    const auto extent = extentOf(parser);
    std::vector<Limit> limits{
        startLimit(programs, folder + u"/bench-empty-window"_s, extent.starts)};
    Usual usual{programs};
    const auto opened = usual.megabytes();
    limits.push_back({"resident memory, window opened once and closed: MB", opened, memory});
    const auto idle = usual.idle(extent.idle);
    limits.insert(limits.end(), idle.begin(), idle.end());
    limits.push_back(usual.returns(extent.returns));
    const auto before = usual.megabytes();
    usual.flood(extent.events);
    limits.push_back(
        {"resident memory, more after " + std::to_string(extent.events) + " inputs: MB",
         usual.megabytes() - before, more});
    print(limits);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    return runCommand(
        argc, argv,
        {.name = "bench-footprint",
         .description =
             u"Measures what Quenthisar takes beside its work, on X servers of its own, some nine\n"
             "minutes long: from its start to its window, idle, back to the host, in memory.\n"
             "Keep the machine quiet meanwhile."_s,
         .options = {{u"quick"_s, u"One minute; the figures are rough."_s},
                     {u"smoke"_s, u"Only whether it runs; the figures mean nothing."_s}},
         .run = run});
}
