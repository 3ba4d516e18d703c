// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/XInputSession.h"
#include "Platform/EventTap.h"

namespace quenthisar {

/// Taps on the input of an X session. One at a time: while it lives, others are refused. It
/// delivers moves while the cursor is free, and everything while it is frozen.
class XEventTaps final : public EventTaps {
public:
    /// `input` outlives the taps.
    explicit XEventTaps(XInputSession& input) : session(input) {}

    std::unique_ptr<EventTap> tapCreate(std::uint64_t mask, TapCallback callback) override;
    std::unique_ptr<RunLoopSource> addToMainRunLoop(EventTap& tap) override;

private:
    XInputSession& session;
    std::weak_ptr<void> current;
};

} // namespace quenthisar
