// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Displays.h"

#include <map>
#include <utility>

namespace quenthisar {

/// Displays that a test plugs in and out.
class FakeDisplays final : public Displays {
public:
    std::vector<Screen> screens() override { return list; }

    std::optional<std::string> displayUUID(std::uint32_t displayID) override {
        const auto it = uuids.find(displayID);
        return it != uuids.end() ? std::optional{it->second} : std::nullopt;
    }

    void onChange(std::function<void()> handler) override { changed = std::move(handler); }

    /// A display that has `uuid`, with its frame in global display coordinates: y downwards. The
    /// first one is the primary and stands at the origin.
    void add(const std::string& uuid, const Rect& global) {
        const auto number = static_cast<std::uint32_t>(list.size() + 1);
        const double primaryHeight = list.empty() ? global.height : list.front().frame.height;
        list.push_back({.screenNumber = number,
                        .frame = {global.x, primaryHeight - global.y - global.height, global.width,
                                  global.height},
                        .localizedName = "Display " + uuid});
        uuids[number] = uuid;
    }

    std::vector<Screen> list;
    std::map<std::uint32_t, std::string> uuids;
    std::function<void()> changed;
};

} // namespace quenthisar
