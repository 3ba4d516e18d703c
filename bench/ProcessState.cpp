// SPDX-License-Identifier: MIT
#include "ProcessState.h"

#include <filesystem>
#include <fstream>
#include <string>

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

int childrenOf(const path& process) {
    int result = 0;
    std::error_code gone;
    for (std::filesystem::directory_iterator at{process / "task", gone}, end; at != end;
         at.increment(gone)) {
        std::ifstream children{at->path() / "children"};
        for (pid_t child = 0; children >> child;) ++result;
    }
    return result;
}

} // namespace

std::optional<ProcessState> processState(pid_t process) {
    const path folder{"/proc/" + std::to_string(process)};
    std::ifstream status{folder / "status"};
    ProcessState result;
    bool isThere = false;
    for (std::string line; std::getline(status, line);) {
        constexpr std::string_view field = "RssAnon:";
        if (!line.starts_with(field)) continue;
        result.resident = std::stol(line.substr(field.size()));
        isThere = true;
    }
    if (!isThere) return std::nullopt;
    result.descriptors = entries(folder / "fd");
    result.threads = entries(folder / "task");
    result.children = childrenOf(folder);
    return result;
}

} // namespace quenthisar::bench
