// SPDX-License-Identifier: MIT
#pragma once

#include <fstream>
#include <iterator>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quenthisar::test {

/// The guard processes that `process` has started, those that it has not reaped included.
inline std::vector<pid_t> guardsOf(pid_t process) {
    const auto id = std::to_string(process);
    std::ifstream children("/proc/" + id + "/task/" + id + "/children");
    std::vector<pid_t> all{std::istream_iterator<pid_t>(children), {}};
    std::erase_if(all, [](pid_t child) {
        std::ifstream file("/proc/" + std::to_string(child) + "/comm");
        std::string name;
        return !std::getline(file, name) || name != "quenthisar-guar"; // the kernel keeps no more
    });
    return all;
}

} // namespace quenthisar::test
