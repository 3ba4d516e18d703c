// SPDX-License-Identifier: MIT
#include "Linux/XTestMotion.h"

#include <utility>

namespace quenthisar {

FineMotion XTestMotion::motion(const XPointers::Values& values, Pixel pointer) {
    const auto from = std::exchange(last, pointer);
    // Once a position has taken it away, nothing holds the pointer, and distances move it too.
    if (from != held || pointer != held)
        return {(pointer.x - from.x) * finePerPixel, (pointer.y - from.y) * finePerPixel};
    const FineMotion moved{values.axis[0].value_or(0), values.axis[1].value_or(0)};
    const bool isHeldPosition = moved == FineMotion{held.x * finePerPixel, held.y * finePerPixel};
    return isHeldPosition ? FineMotion{} : moved;
}

} // namespace quenthisar
