// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace quenthisar {

/// A program to run with this process's environment, working directory and standard streams.
struct ProcessDescription {
    std::string executable;
    std::vector<std::string> arguments; // without the program's own name

    bool operator==(const ProcessDescription&) const = default;
};

/// Starts programs in the background. Main thread.
class ProcessLauncher {
public:
    virtual ~ProcessLauncher() = default;

    /// Hands the launch to a background queue, which starts programs in this order and waits for
    /// none. Returns at once; a launch that fails is dropped.
    virtual void launch(ProcessDescription process) = 0;
};

} // namespace quenthisar
