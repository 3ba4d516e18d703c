// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/MotionPacer.h"
#include "Linux/XConnection.h"

#include <vector>

namespace quenthisar::test {

/// A client that looks on through XInput 2.
class Onlooker {
public:
    /// Looks at what happens in `window`; at raw events, of all devices, where that is none.
    explicit Onlooker(xcb_window_t window = XCB_WINDOW_NONE);

    /// The XInput 2 types of the events that have arrived since the last call.
    std::vector<int> seen();
    /// The sum of the raw motion in them so far.
    FineMotion motion() const { return sum; }

private:
    std::unique_ptr<XConnection> connection = XConnection::open();
    std::uint8_t opcode = 0;
    FineMotion sum;
};

} // namespace quenthisar::test
