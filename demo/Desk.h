// SPDX-License-Identifier: MIT
#pragma once

#include "Recorder.h"
#include "Rig.h"
#include "XClient.h"

namespace quenthisar::demo {

/// The desk program on a display; its lines are those of DeskLines.h.
class Desk : public Recorder {
public:
    /// `role`: "host" or "target". Returns once it is shown and focused; throws std::runtime_error
    /// if that doesn't happen in time.
    Desk(const Programs& programs, const QString& role, const QString& display);

    /// Returns once it has told of all that the server has sent it up to now; false if it doesn't
    /// answer. `client` is of the same server.
    bool catchUp(const XClient& client);

private:
    std::uint32_t window = XCB_NONE;
    std::uint32_t catchUps = 0;
};

} // namespace quenthisar::demo
