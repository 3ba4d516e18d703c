// SPDX-License-Identifier: MIT
#pragma once

#include "Capture/EventTapController.h"
#include "unit/Fakes.h"

namespace quenthisar {

/// Two connected dongles A and B, none bound; capture runs.
struct TakeoverFixture : Fakes {
    AppState state{defaults, displays, loginItem, launcher, log};
    DongleManager manager{state, central, clock, log};
    EventTapController controller{state, manager, taps, taps};

    TakeoverFixture() {
        discover({A, B});
        manager.connect(A);
        manager.connect(B);
        clock.settle();
        central.writes.clear();
        controller.start();
    }

    void bind(const Uuid& id, Edge edge, const std::string& screen = "D1") {
        state.profiles.modify(
            [&](auto& profiles) { profiles.front().bindings[bindingKey(edge, screen)] = id; });
    }

    /// A further display, in global display coordinates.
    void addDisplay(const std::string& uuid, const Rect& frame) {
        displays.add(uuid, frame);
        state.screens = ScreenLayout::current(displays);
    }

    TapVerdict moveTo(double x, double y) {
        return taps.post({.type = EventType::mouseMoved, .location = {x, y}});
    }

    TapVerdict motion(std::int64_t dx, std::int64_t dy) {
        return taps.post({.type = EventType::mouseMoved, .deltaX = dx, .deltaY = dy});
    }

    TapVerdict post(EventType type) { return taps.post({.type = type}); }

    TapVerdict key(EventType type, std::int64_t code) {
        return taps.post({.type = type, .keyCode = code});
    }

    TapVerdict flags(std::uint64_t flags) {
        return taps.post({.type = EventType::flagsChanged, .flags = flags});
    }

    TapVerdict mediaKey(std::int64_t keyType, int keyState) {
        return taps.post({.type = EventType::systemDefined,
                          .subtype = 8,
                          .data1 = keyType << 16 | keyState << 8});
    }

    bool isRemote() const { return state.takeover->has_value(); }
};

} // namespace quenthisar
