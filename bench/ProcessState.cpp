// SPDX-License-Identifier: MIT
#include "ProcessState.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace quenthisar::bench {

namespace {

using std::filesystem::path;

int entries(const path& folder) {
    int result = 0;
    std::error_code gone;
    for (std::filesystem::directory_iterator at{folder, gone}, end; at != end; at.increment(gone))
        ++result;
    return result;
}

path folderOf(pid_t process) {
    return "/proc/" + std::to_string(process);
}

std::vector<path> tasksOf(pid_t process) {
    std::vector<path> result;
    std::error_code gone;
    for (std::filesystem::directory_iterator at{folderOf(process) / "task", gone}, end; at != end;
         at.increment(gone))
        result.push_back(at->path());
    return result;
}

std::vector<pid_t> childrenOf(pid_t process) {
    std::vector<pid_t> result;
    for (const auto& task : tasksOf(process)) {
        std::ifstream children{task / "children"};
        for (pid_t child = 0; children >> child;) result.push_back(child);
    }
    return result;
}

/// A number of a status file; none if there is no such file or field.
std::optional<long> numberIn(const path& status, std::string_view field) {
    std::ifstream file{status};
    for (std::string line; std::getline(file, line);)
        if (line.starts_with(field)) return std::stol(line.substr(field.size()));
    return std::nullopt;
}

} // namespace

std::optional<ProcessState> processState(pid_t process) {
    const auto folder = folderOf(process);
    const auto own = numberIn(folder / "status", "RssAnon:");
    const auto all = numberIn(folder / "status", "VmRSS:");
    if (!own || !all) return std::nullopt;
    return ProcessState{.resident = *own,
                        .residentInAll = *all,
                        .descriptors = entries(folder / "fd"),
                        .threads = static_cast<int>(tasksOf(process).size()),
                        .children = static_cast<int>(childrenOf(process).size())};
}

std::map<pid_t, long> wakeUps(pid_t process) {
    std::map<pid_t, long> result;
    for (const auto& task : tasksOf(process))
        result[std::stoi(task.filename())] =
            numberIn(task / "status", "voluntary_ctxt_switches:").value_or(0);
    for (const auto child : childrenOf(process)) result.merge(wakeUps(child));
    return result;
}

} // namespace quenthisar::bench
