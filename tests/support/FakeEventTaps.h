// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Cursor.h"
#include "Platform/EventTap.h"

#include <string>
#include <utility>
#include <vector>

namespace quenthisar {

/// The host's input as a model: one tap at most, a cursor, and what the host got to see.
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

    void associateMouseAndMouseCursorPosition(bool connected) override {
        calls.emplace_back(connected ? "unfreeze" : "freeze");
    }
    void displayHideCursor() override { calls.emplace_back("hide"); }
    void displayShowCursor() override { calls.emplace_back("show"); }

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
    std::vector<std::string> calls; // to the cursor, in order

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
