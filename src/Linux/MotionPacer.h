// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace quenthisar {

/// Motion in units of 2^-32 pixel, as X writes it: sums of it are exact.
struct FineMotion {
    std::int64_t x = 0, y = 0;

    FineMotion& operator+=(const FineMotion& more) {
        x += more.x;
        y += more.y;
        return *this;
    }
    bool operator==(const FineMotion&) const = default;
};

inline constexpr std::int64_t finePerPixel = std::int64_t{1} << 32;

/// Brings the motion of a fast mouse to the pace of a link: 1,000 events a second are more than
/// it carries. Fractions of a pixel are kept for the next delivery; nothing is lost.
class MotionPacer {
public:
    using Clock = std::chrono::steady_clock;
    /// Whole pixels, to the right and downwards positive, never both zero.
    struct Delta {
        std::int64_t x = 0, y = 0;
    };

    /// A mouse of 125 Hz jitters around 8 ms and is not to be held up.
    static constexpr std::chrono::milliseconds atOnceAfter{7};
    static constexpr std::chrono::milliseconds interval{8};

    /// Adds motion; what is to be delivered at once, if anything.
    std::optional<Delta> add(const FineMotion& motion, Clock::time_point now);
    /// What has been summed, to be delivered now: it is due, or something else is about to be.
    std::optional<Delta> take(Clock::time_point now);
    /// When the sum is to be taken; none if it holds no whole pixel.
    std::optional<Clock::time_point> due() const;
    void clear();

private:
    Delta wholePixels() const;

    FineMotion sum;
    std::optional<Clock::time_point> lastDelivery;
};

} // namespace quenthisar
