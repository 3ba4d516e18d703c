// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/ProcessLauncher.h"

#include <thread>

namespace quenthisar {

/// Starts programs from a thread of its own, which reaps each by its own id and waits for none
/// before it starts the next. They go on when this is destroyed. Launching is for the main thread.
class SpawnLauncher final : public ProcessLauncher {
public:
    SpawnLauncher();
    SpawnLauncher(const SpawnLauncher&) = delete;
    SpawnLauncher& operator=(const SpawnLauncher&) = delete;
    ~SpawnLauncher() override;

    void launch(ProcessDescription process) override;

private:
    int orders = -1; // the writing end of the pipe over which the thread takes its orders
    std::thread thread;
};

} // namespace quenthisar
