// SPDX-License-Identifier: MIT
#include "Linux/MotionPacer.h"

namespace quenthisar {

std::optional<MotionPacer::Delta> MotionPacer::add(const FineMotion& motion,
                                                   Clock::time_point now) {
    sum += motion;
    if (lastDelivery && now - *lastDelivery < atOnceAfter) return std::nullopt;
    return take(now);
}

std::optional<MotionPacer::Delta> MotionPacer::take(Clock::time_point now) {
    const auto whole = wholePixels();
    if (whole.x == 0 && whole.y == 0) return std::nullopt;
    sum.x -= whole.x * finePerPixel;
    sum.y -= whole.y * finePerPixel;
    lastDelivery = now;
    return whole;
}

std::optional<MotionPacer::Clock::time_point> MotionPacer::due() const {
    const auto whole = wholePixels();
    if (whole.x == 0 && whole.y == 0) return std::nullopt;
    return lastDelivery ? *lastDelivery + interval : Clock::time_point{};
}

void MotionPacer::clear() {
    *this = {};
}

MotionPacer::Delta MotionPacer::wholePixels() const {
    return {sum.x / finePerPixel, sum.y / finePerPixel};
}

} // namespace quenthisar
