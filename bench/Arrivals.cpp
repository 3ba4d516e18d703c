// SPDX-License-Identifier: MIT
#include "Arrivals.h"

namespace quenthisar::bench {

namespace {

/// The stimuli of one sort, that is motion or not, with their times, in order.
class Expected {
public:
    Expected(const Stimuli& stimuli, const std::vector<Clock::time_point>& made, bool isMotion)
        : stimuli(stimuli), made(made), isMotion(isMotion) {
        skipOthers();
    }

    bool isEmpty() const { return at == made.size(); }
    const Stimulus& front() const { return stimuli[at]; }
    nanoseconds pop(Clock::time_point arrived) {
        const auto latency = arrived - made[at];
        ++at;
        skipOthers();
        return latency;
    }

private:
    void skipOthers() {
        while (at < made.size() && (stimuli[at].kind == Kind::motion) != isMotion) ++at;
    }

    const Stimuli& stimuli;
    const std::vector<Clock::time_point>& made;
    const bool isMotion;
    std::size_t at = 0;
};

bool isSame(const Stimulus& stimulus, const Arrival& arrival) {
    if (stimulus.kind != arrival.kind || stimulus.detail != arrival.detail) return false;
    return stimulus.kind == Kind::scroll || stimulus.isDown == arrival.isDown;
}

} // namespace

Outcome compare(const Stimuli& stimuli, const std::vector<Clock::time_point>& made,
                const std::vector<Arrival>& arrivals) {
    Outcome result;
    result.lost = stimuli.size() - made.size();
    Expected motion{stimuli, made, true}, others{stimuli, made, false};
    QPoint left; // of what has arrived, what no stimulus accounts for
    for (const auto& arrival : arrivals) {
        if (arrival.kind != Kind::motion) {
            if (!others.isEmpty() && isSame(others.front(), arrival))
                result.others.push_back(others.pop(arrival.time));
            else
                ++result.wrong;
            continue;
        }
        left += arrival.delta;
        while (!motion.isEmpty() && left.y() >= motion.front().delta.y()) {
            left -= motion.front().delta;
            result.motion.push_back(motion.pop(arrival.time));
        }
        if (!left.isNull()) ++result.wrong;
    }
    for (; !motion.isEmpty(); motion.pop({})) ++result.lost;
    for (; !others.isEmpty(); others.pop({})) ++result.lost;
    return result;
}

} // namespace quenthisar::bench
