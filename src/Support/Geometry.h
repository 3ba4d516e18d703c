// SPDX-License-Identifier: MIT
#pragma once

namespace quenthisar {

struct Point {
    double x = 0, y = 0;

    bool operator==(const Point&) const = default;
};

/// An axis-parallel rectangle. Which way y grows depends on the space that it stands in.
struct Rect {
    double x = 0, y = 0, width = 0, height = 0;

    constexpr double minX() const { return x; }
    constexpr double minY() const { return y; }
    constexpr double maxX() const { return x + width; }
    constexpr double maxY() const { return y + height; }

    bool operator==(const Rect&) const = default;
};

} // namespace quenthisar
