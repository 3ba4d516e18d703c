// SPDX-License-Identifier: MIT
#pragma once

#include "BLE/DongleManager.h"
#include "support/FakeCentral.h"
#include "support/FakeDisplays.h"
#include "support/FakeEventTaps.h"
#include "support/FakeHost.h"
#include "support/FakeUserDefaults.h"
#include "support/VirtualClock.h"

#include <cstddef>
#include <initializer_list>
#include <map>
#include <memory>
#include <vector>

namespace quenthisar {

inline const Uuid A = *Uuid::parse("00000000-0000-4000-8000-00000000AAAA");
inline const Uuid B = *Uuid::parse("00000000-0000-4000-8000-00000000BBBB");
inline const Uuid C = *Uuid::parse("00000000-0000-4000-8000-00000000CCCC");

using Ids = std::vector<Uuid>;
using Payloads = std::vector<Payload>;

/// A payload from its first bytes; the rest is zero.
inline Payload bytes(std::initializer_list<int> first) {
    Payload payload{};
    std::size_t place = 0;
    for (const int byte : first) payload.at(place++) = static_cast<std::uint8_t>(byte);
    return payload;
}

/// What every part of the core runs on; a display D1 of 1920 x 1080.
struct Fakes {
    VirtualClock clock;
    FakeUserDefaults defaults;
    FakeDisplays displays;
    FakeEventTaps taps;
    FakeCentral central{clock};
    FakeLoginItemService loginItem;
    FakeProcessLauncher launcher;
    FakeSystemLog log;
    std::map<Uuid, std::shared_ptr<FakePeripheral>> dongles;

    Fakes() { displays.add("D1", {0, 0, 1920, 1080}); }

    /// They are discovered in this order.
    void discover(const Ids& ids) {
        for (const auto& id : ids) {
            dongles[id] = central.add(id, DongleManager::serviceUUID, DongleManager::inputCharUUID);
            central.discover(dongles[id]);
        }
    }
    /// What went to a dongle since the last call.
    Payloads sent(const Uuid& id = A) { return central.takePayloads(id); }
};

} // namespace quenthisar
