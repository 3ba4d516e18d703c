// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace quenthisar::dongle {

/// The computer that the dongle is plugged into, as far as it takes input. Nothing can fail: what
/// is no longer there takes nothing.
class InputSink {
public:
    virtual ~InputSink() = default;
    /// `code`: Linux key code, a position.
    virtual void key(std::uint8_t code, bool down) = 0;
    /// 1 left, 2 middle, 3 right; 4 and 5 are the wheel, up and down.
    virtual void button(std::uint8_t number, bool down) = 0;
    virtual void move(int dx, int dy) = 0;
    /// What came before takes effect now.
    virtual void flush() = 0;
};

} // namespace quenthisar::dongle
