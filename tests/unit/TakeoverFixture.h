// SPDX-License-Identifier: MIT
#pragma once

#include "Capture/EventTapController.h"
#include "support/FakeCentral.h"
#include "support/FakeDisplays.h"
#include "support/FakeEventTaps.h"
#include "support/FakeHost.h"
#include "support/FakeUserDefaults.h"
#include "support/VirtualClock.h"
#include "unit/Ids.h"
#include "unit/Payloads.h"

#include <memory>
#include <vector>

namespace quenthisar {

/// One display D1 of 1920 x 1080 and two connected dongles A and B, none bound; capture runs.
struct TakeoverFixture {
    VirtualClock clock;
    FakeUserDefaults defaults;
    FakeDisplays displays;
    FakeCentral central{clock};
    FakeLoginItemService loginItem;
    FakeProcessLauncher launcher;
    FakeSystemLog log;
    FakeEventTaps taps;
    AppState state;
    DongleManager manager;
    EventTapController controller;
    std::map<Uuid, std::shared_ptr<FakePeripheral>> dongles;

    TakeoverFixture()
        : state(defaults, oneDisplay(), loginItem, launcher, log),
          manager(state, central, clock, log), controller(state, manager, taps, taps) {
        for (const auto& id : {A, B}) {
            dongles[id] = central.add(id, DongleManager::serviceUUID, DongleManager::inputCharUUID);
            central.discover(dongles[id]);
            manager.connect(id);
        }
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

    TapVerdict key(EventType type, std::int64_t code, std::uint64_t flags = 0) {
        return taps.post({.type = type, .flags = flags, .keyCode = code});
    }

    TapVerdict flags(std::uint64_t flags) {
        return taps.post({.type = EventType::flagsChanged, .flags = flags});
    }

    TapVerdict mediaKey(std::int64_t keyType, int keyState, std::int16_t subtype = 8) {
        return taps.post({.type = EventType::systemDefined,
                          .subtype = subtype,
                          .data1 = keyType << 16 | keyState << 8});
    }

    bool isRemote() const { return state.takeover->has_value(); }

    /// What went to a dongle since the last call.
    Payloads sent(const Uuid& id = A) { return central.takePayloads(id); }

private:
    Displays& oneDisplay() {
        displays.add("D1", {0, 0, 1920, 1080});
        return displays;
    }
};

} // namespace quenthisar
