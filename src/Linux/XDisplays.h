// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/DesktopSpace.h"
#include "Linux/Monitor.h"
#include "Linux/XConnection.h"
#include "Linux/XEventPump.h"
#include "Platform/Displays.h"

#include <QTimer>

#include <memory>

namespace quenthisar {

/// The monitors of an X server with RandR 1.5. With no such server there are no displays. A lost
/// connection counts as a change, and is opened again when the displays are asked for. Between two
/// changes that are told of the list is the same: who keeps it must get locations in its terms.
class XDisplays final : public Displays {
public:
    /// `desktop` follows the list that was last handed out, and outlives this.
    explicit XDisplays(DesktopSpace& desktop);

    std::vector<Screen> screens() override;
    /// Of the displays that were last handed out.
    std::optional<std::string> displayUUID(std::uint32_t displayID) override;
    void onChange(std::function<void()> handler) override { changed = std::move(handler); }

private:
    void open();
    bool selectEvents();
    void read();
    void take(const xcb_generic_event_t& event);

    DesktopSpace& space;
    std::unique_ptr<XConnection> connection;
    std::unique_ptr<XEventPump> pump;
    std::uint8_t firstEvent = 0;
    std::vector<Monitor> monitors;
    bool stale = true;
    QTimer settled;
    std::function<void()> changed;
};

} // namespace quenthisar
