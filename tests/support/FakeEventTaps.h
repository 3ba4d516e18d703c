// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Cursor.h"
#include "Platform/EventTap.h"

#include <utility>

namespace quenthisar {

/// The host's input as a model: one tap at most, and a cursor that nobody sees.
class FakeEventTaps final : public EventTaps, public Cursor {
public:
    std::unique_ptr<EventTap> tapCreate(std::uint64_t, TapCallback tapCallback) override {
        if (refuses) return nullptr;
        callback = std::move(tapCallback);
        return std::make_unique<Tap>(*this);
    }

    std::unique_ptr<RunLoopSource> addToMainRunLoop(EventTap&) override {
        return std::make_unique<Source>(*this);
    }

    void associateMouseAndMouseCursorPosition(bool /*connected*/) override {}
    void displayHideCursor() override {}
    void displayShowCursor() override {}

    bool isDelivering() const { return callback && enabled && hasSource; }

    /// Posts an event as the system would: to the tap if there is one, else to the host.
    TapVerdict post(const TapEvent& event) {
        if (!isDelivering()) return TapVerdict::passOn;
        const auto current = callback; // the tap may go while its callback runs
        return current(event);
    }

    /// A notification, which reaches a disabled tap too.
    TapVerdict notify(EventType type) {
        enabled = false;
        return callback({.type = type});
    }

    bool refuses = false;
    bool enabled = false;
    bool hasSource = false;

private:
    struct Tap final : EventTap {
        explicit Tap(FakeEventTaps& service) : taps(service) {}
        ~Tap() override { taps.callback = nullptr; }
        void enable(bool on) override { taps.enabled = on; }
        FakeEventTaps& taps;
    };
    struct Source final : RunLoopSource {
        explicit Source(FakeEventTaps& service) : taps(service) { taps.hasSource = true; }
        ~Source() override { taps.hasSource = false; }
        FakeEventTaps& taps;
    };

    TapCallback callback;
};

} // namespace quenthisar
