// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/XConnection.h"
#include "Support/Geometry.h"
#include "Support/Uuid.h"

#include <QByteArray>

#include <cstdint>
#include <string>
#include <vector>

namespace quenthisar {

/// A monitor as the X server lists it.
struct Monitor {
    std::uint32_t number = 0; // of its output; of its name, where it has none
    std::string name;         // of the connector, or as somebody named it
    Rect frame;               // in the root window
    bool isPrimary = false;
    QByteArray edid; // empty where the display says nothing about itself
};

/// The active monitors, in the server's order; empty when the connection is lost.
std::vector<Monitor> readMonitors(const XConnection& connection);

/// Moves the primary monitor to the front: the topmost, then leftmost, if none is marked.
void putPrimaryFirst(std::vector<Monitor>& monitors);

/// The model that the display names itself by, or else the monitor's name.
std::string displayName(const Monitor& monitor);

/// The same for the same display wherever it is connected, as long as no other one among
/// `monitors` is equal to it; then, and for displays without EDID, the connector tells them apart.
Uuid displayIdentifier(const Monitor& monitor, const std::vector<Monitor>& monitors);

} // namespace quenthisar
