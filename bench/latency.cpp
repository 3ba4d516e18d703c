// SPDX-License-Identifier: MIT
// What the program costs, beside the least that could do the job. Ends with 0 only if all that was
// asked was measured and no input got lost.
#include "Command.h"
#include "Comparison.h"
#include "DataFile.h"

#include <cstdio>

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace quenthisar::bench;

Extent extentOf(const QCommandLineParser& parser) {
    Extent result;
    if (parser.isSet(u"quick"_s)) result = {.rounds = 1, .share = 0.4, .idle = 2s, .local = 1s};
    if (parser.isSet(u"smoke"_s))
        result = {.rounds = 1, .share = 0.04, .idle = 10ms, .local = 20ms};
    result.only = parser.value(u"only"_s).toStdString();
    return result;
}

int run(const QCommandLineParser& parser) {
    const auto folder = parser.value(u"programs"_s);
    const auto figures = measure(quenthisar::demo::Programs::in(folder), folder + u"/bench-floor"_s,
                                 extentOf(parser));
    const auto limits = limitsOf(figures);
    print(figures);
    print(limits);
    const auto data = parser.value(u"data"_s);
    if (!data.isEmpty() && !writeData(data, figures, limits)) {
        std::fprintf(stderr, "bench-latency: %s cannot be written\n", qPrintable(data));
        return 1;
    }
    return figures.isExact() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    return runCommand(
        argc, argv,
        {.name = "bench-latency",
         .description =
             u"Measures latency and processor time on X servers of its own, some four minutes\n"
             "long:\n"
             "  direct   input made and received on one server: what measuring itself takes\n"
             "  floor    the least program that brings input from one server to another\n"
             "  program  Quenthisar and a virtual dongle, in a takeover\n"
             "Keep the machine quiet meanwhile."_s,
         .options = {{u"quick"_s, u"One short round."_s},
                     {u"smoke"_s, u"Only whether it runs; the figures mean nothing."_s},
                     {u"only"_s, u"Only what has this in its name, such as keys or idle."_s,
                      u"text"_s},
                     {u"data"_s, u"Also writes everything as JSON, each single latency included."_s,
                      u"file"_s}},
         .run = run});
}
