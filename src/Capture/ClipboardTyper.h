// SPDX-License-Identifier: MIT
#pragma once

#include "BLE/DongleManager.h"
#include "Platform/MainQueue.h"
#include "Platform/Pasteboard.h"
#include "Platform/SerialQueue.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace quenthisar {

/// Types the pasteboard's text on a target, one character each 0.074 s. A run can't be stopped, and
/// what is asked for meanwhile is ignored. Held by a `std::shared_ptr`; a run under way keeps it.
class ClipboardTyper : public std::enable_shared_from_this<ClipboardTyper> {
public:
    /// All outlive the typer; `queue` is where it sleeps between the characters.
    ClipboardTyper(DongleManager& dongleManager, Pasteboard& pasteboard, SerialQueue& queue,
                   MainQueue& mainQueue);

    /// Starts a run of at most 1,048,576 characters, or does nothing: during a run, and when there
    /// is no text or none that can be typed. Main thread; waits for the pasteboard only.
    void typeClipboard(Uuid to);

private:
    using Bytes = std::vector<std::uint8_t>;

    void run(const Bytes& bytes, const Uuid& id);

    DongleManager& dongleManager;
    Pasteboard& pasteboard;
    SerialQueue& queue;
    MainQueue& mainQueue;
    std::atomic<bool> typing = false; // set on the main thread, cleared on the queue's
};

} // namespace quenthisar
