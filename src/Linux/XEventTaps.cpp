// SPDX-License-Identifier: MIT
#include "Linux/XEventTaps.h"

#include <utility>

namespace quenthisar {

namespace {

/// Notifications about the tap itself are no events of the mask.
bool isWanted(EventType type, std::uint64_t mask) {
    const auto number = static_cast<std::uint32_t>(type);
    return number >= 64 || (mask >> number & 1) != 0;
}

class XTap final : public EventTap {
public:
    XTap(XInputSession& input, std::uint64_t mask, TapCallback callback, std::shared_ptr<void> seat)
        : session(input), receiver(std::make_shared<XInputSession::Receiver>(
                              [mask, callback = std::move(callback)](const TapEvent& event) {
                                  if (isWanted(event.type, mask)) callback(event);
                              })),
          occupied(std::move(seat)) {}
    ~XTap() override { enable(false); }

    void enable(bool on) override {
        enabled = on;
        // The connection may have been lost since.
        if (on) session.open();
        update();
    }

    void setScheduled(bool on) {
        scheduled = on;
        update();
    }

private:
    void update() { session.setReceiver(enabled && scheduled ? receiver : nullptr); }

    XInputSession& session;
    const std::shared_ptr<const XInputSession::Receiver> receiver;
    const std::shared_ptr<void> occupied;
    bool enabled = false, scheduled = false;
};

class XTapSource final : public RunLoopSource {
public:
    explicit XTapSource(XTap& owner) : tap(owner) { tap.setScheduled(true); }
    ~XTapSource() override { tap.setScheduled(false); }

private:
    XTap& tap;
};

} // namespace

std::unique_ptr<EventTap> XEventTaps::tapCreate(std::uint64_t mask, TapCallback callback) {
    if (!current.expired() || !session.open()) return nullptr;
    const auto seat = std::make_shared<char>();
    current = seat;
    return std::make_unique<XTap>(session, mask, std::move(callback), seat);
}

std::unique_ptr<RunLoopSource> XEventTaps::addToMainRunLoop(EventTap& tap) {
    return std::make_unique<XTapSource>(static_cast<XTap&>(tap));
}

} // namespace quenthisar
