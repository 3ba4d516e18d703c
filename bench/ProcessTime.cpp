// SPDX-License-Identifier: MIT
#include "ProcessTime.h"

#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>

namespace quenthisar::bench {

namespace {

using std::chrono::nanoseconds;

std::optional<nanoseconds> timeOf(pid_t process) {
    clockid_t clock = 0;
    timespec time{};
    if (::clock_getcpuclockid(process, &clock) != 0 || ::clock_gettime(clock, &time) != 0)
        return std::nullopt;
    return std::chrono::seconds{time.tv_sec} + nanoseconds{time.tv_nsec};
}

nanoseconds timeOfChildren(pid_t process) {
    nanoseconds sum{};
    std::error_code gone;
    const std::filesystem::path tasks{"/proc/" + std::to_string(process) + "/task"};
    for (const auto& task : std::filesystem::directory_iterator{tasks, gone}) {
        std::ifstream children{task.path() / "children"};
        for (pid_t child = 0; children >> child;)
            sum += timeOf(child).value_or(nanoseconds{}) + timeOfChildren(child);
    }
    return sum;
}

} // namespace

std::optional<nanoseconds> processorTime(const QList<pid_t>& processes) {
    nanoseconds sum{};
    for (const auto process : processes) {
        const auto own = timeOf(process);
        if (!own) return std::nullopt;
        sum += *own + timeOfChildren(process);
    }
    return sum;
}

} // namespace quenthisar::bench
