// SPDX-License-Identifier: MIT
// Whether the program holds more the longer it works. Ends with 0 only if it doesn't.
#include "Command.h"
#include "WorkingDay.h"

#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

using namespace Qt::StringLiterals;
using namespace quenthisar::bench;

/// What the allocator keeps of one more flood or one more window, KiB.
constexpr long allowedGrowth = 1024;
constexpr double warmUp = 60, window = 60; // seconds

struct Sample {
    double time = 0; // seconds since the first round began
    ProcessState state{};
};

void print(const char* what, const Sample& sample) {
    std::printf("%-22s %7.0f s  %6ld KiB  %3d descriptors  %2d threads  %d children\n", what,
                sample.time, sample.state.resident, sample.state.descriptors, sample.state.threads,
                sample.state.children);
}

bool writeTable(const QString& path, const std::vector<Sample>& samples) {
    QFile file{path};
    if (!file.open(QIODevice::WriteOnly)) return false;
    QTextStream out{&file};
    out << "seconds,residentKiB,descriptors,threads,children\n";
    for (const auto& [time, state] : samples)
        out << time << ',' << state.resident << ',' << state.descriptors << ',' << state.threads
            << ',' << state.children << '\n';
    out.flush();
    return file.error() == QFile::NoError;
}

/// The most of each that is held from a time on, for a minute; all that there is where the samples
/// end before that time. What one moment's sample holds is up to chance.
Sample most(const std::vector<Sample>& samples, double from) {
    const double start = std::clamp(from, 0.0, samples.back().time);
    Sample result{.time = start};
    for (const auto& [time, state] : samples) {
        if (time < start || time > start + window) continue;
        auto& sum = result.state;
        sum.resident = std::max(sum.resident, state.resident);
        sum.descriptors = std::max(sum.descriptors, state.descriptors);
        sum.threads = std::max(sum.threads, state.threads);
        sum.children = std::max(sum.children, state.children);
    }
    return result;
}

bool holdsNoMore(const ProcessState& early, const ProcessState& late) {
    return late.descriptors <= early.descriptors && late.threads <= early.threads &&
           late.children <= early.children && late.resident <= early.resident + allowedGrowth;
}

int run(const QCommandLineParser& parser) {
    const auto length = parser.value(u"minutes"_s).toDouble() * 60;
    const auto table = parser.value(u"table"_s);
    WorkingDay day{quenthisar::demo::Programs::in(parser.value(u"programs"_s))};
    const auto start = Clock::now();
    const auto elapsed = [&] {
        return std::chrono::duration<double>{Clock::now() - start}.count();
    };
    std::vector<Sample> samples;
    int rounds = 0;
    do {
        day.playRound();
        ++rounds;
        samples.push_back({elapsed(), day.state()});
    } while (elapsed() < length);

    const auto first = most(samples, warmUp);
    const auto last = most(samples, samples.back().time - window);
    print("after the first minute", first);
    print("in the last minute", last);
    std::printf("%d rounds, %llu inputs\n", rounds, static_cast<unsigned long long>(day.inputs()));
    if (!table.isEmpty() && !writeTable(table, samples)) {
        std::fprintf(stderr, "bench-soak: %s cannot be written\n", qPrintable(table));
        return 1;
    }
    const bool isSteady = holdsNoMore(first.state, last.state);
    std::puts(isSteady ? "It holds no more than after the first minute."
                       : "It holds MORE than after the first minute.");
    return isSteady ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    return runCommand(
        argc, argv,
        {.name = "bench-soak",
         .description =
             u"Plays a user's working day on X servers of its own, over and over: takeovers,\n"
             "floods of motion, typing, the clipboard, the window, lost links. Tells what the\n"
             "program holds after the first minute and at the end."_s,
         .options = {{u"minutes"_s, u"How long; 30 where nothing is given."_s, u"number"_s,
                      u"30"_s},
                     {u"table"_s, u"Also writes what it held after each round, as CSV."_s,
                      u"file"_s}},
         .run = run});
}
