// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/XPointers.h"

namespace quenthisar {

/// Tells positions from distances in the motion of the XTest device while the pointer is held: a
/// distance leaves the held pointer where it is, a position takes it there.
class XTestMotion {
public:
    struct Pixel {
        std::int64_t x = 0, y = 0;
        bool operator==(const Pixel&) const = default;
    };

    /// The pointer is held at `at` from now on.
    void start(Pixel at) { held = last = at; }

    /// The motion of an event that holds `values` and after which the pointer is at `pointer`, or
    /// further where later events have already taken it; sums are exact all the same.
    FineMotion motion(const XPointers::Values& values, Pixel pointer);

private:
    Pixel held, last;
};

} // namespace quenthisar
