// SPDX-License-Identifier: MIT
// What displays say about themselves: their names and what they are told apart by.
#include "Linux/Monitor.h"

#include "Target.h"

#include <algorithm>

namespace quenthisar {

void fuzz::run(Bytes input) {
    Reader reader(input);
    std::vector<Monitor> monitors;
    const auto count = reader.number(5);
    const auto sharedSize = std::size_t{reader.byte()};
    const auto shared = reader.bytes(sharedSize);
    for (std::size_t i = 0; i < count; ++i) {
        // Some are alike. Servers give each connector a name of its own.
        const bool isOwn = reader.flag();
        const auto own = isOwn ? reader.bytes(reader.byte()) : shared;
        monitors.push_back({.number = static_cast<std::uint32_t>(i),
                            .name = "HDMI-" + std::to_string(i),
                            .frame = {double(reader.byte()), double(reader.byte()), 640, 480},
                            .isPrimary = reader.flag(),
                            .edid = QByteArray(reinterpret_cast<const char*>(own.data()),
                                               static_cast<qsizetype>(own.size()))});
    }
    const auto before = monitors;
    putPrimaryFirst(monitors);
    require(monitors.size() == count, "loses a monitor");
    if (monitors.empty()) return;
    const bool isAnyPrimary = std::ranges::count(before, true, &Monitor::isPrimary) > 0;
    require(monitors.front().isPrimary == isAnyPrimary, "another than the primary one is first");

    for (const auto& monitor : monitors) {
        const auto name = displayName(monitor);
        require(!name.empty(), "a display without a name");
        require(name == monitor.name || name.size() <= 13, "a name that no descriptor holds");
        require(std::ranges::all_of(name, [](char c) { return ' ' <= c && c <= '~'; }),
                "a name with what can't be shown");
        const auto id = displayIdentifier(monitor, monitors);
        require(id.bytes[6] >> 4 == 5 && id.bytes[8] >> 6 == 2, "no version 5 identifier");
        require(id == displayIdentifier(monitor, before), "the order of displays matters");
        const auto alike = std::ranges::count(monitors, monitor.edid, &Monitor::edid);
        if (alike == 1 && !monitor.edid.isEmpty())
            require(id == displayIdentifier(monitor, {monitor}), "other displays matter");
    }
}

} // namespace quenthisar
