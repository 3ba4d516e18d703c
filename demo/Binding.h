// SPDX-License-Identifier: MIT
#pragma once

#include "XClient.h"

#include <optional>

/// What the settings name: identifiers and bindings, computed here from the same sources as the
/// program does, but not by its code.
namespace quenthisar::demo {

struct BoundEdge {
    XClient::Monitor monitor;
    QString displayUuid;
};

/// The right edge of the primary monitor; of the rightmost one if others stand to its right. None
/// if the server has no monitor.
std::optional<BoundEdge> rightEdge(const XClient& client);

/// Of one of these monitors.
QString displayUuid(const XClient::Monitor& monitor, const QList<XClient::Monitor>& monitors);

/// `address` in upper case with colons.
QString dongleUuid(const QString& address);

struct Settings {
    QString displayUuid;
    QString dongleUuid;
    bool cornerSlam = false;
};

/// The text of a settings file: connects and captures by itself, the display's right edge bound to
/// the dongle.
QByteArray settingsText(const Settings& settings);

/// Writes it as quenthisar/defaults.json into a configuration folder. False if it can't be written.
bool writeSettings(const QString& configurationFolder, const Settings& settings);

} // namespace quenthisar::demo
