// SPDX-License-Identifier: MIT
// What libFuzzer calls: one input, within the time that it may take.
#include "Target.h"

#include <QtGlobal>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace quenthisar::fuzz {

namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

/// Of this thread alone: other programs make it no longer.
nanoseconds processorTime() {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds{time.tv_sec} + nanoseconds{time.tv_nsec};
}

} // namespace

[[gnu::weak]] milliseconds timePerKilobyte() {
    return milliseconds{100};
}

void fail(const char* what) {
    std::fprintf(stderr, "FAILED: %s\n", what);
    std::abort();
}

} // namespace quenthisar::fuzz

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
    // The toolkit would tell of each malformed object path.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quenthisar::fuzz;
    const auto begin = processorTime();
    run({data, size});
    const auto kilobytes = static_cast<int>(std::max<std::size_t>(1, (size + 1023) / 1024));
    require(processorTime() - begin <= timePerKilobyte() * kilobytes,
            "takes too long for its length");
    return 0;
}
