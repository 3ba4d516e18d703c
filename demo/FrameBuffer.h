// SPDX-License-Identifier: MIT
#pragma once

#include "XClient.h"

#include <QFile>

namespace quenthisar::demo {

/// What an Xvfb really scans out, its cursor included: no request tells whether a cursor is shown.
class FrameBuffer {
public:
    /// Of the server's screen 0; throws std::runtime_error if the file isn't what it must be.
    explicit FrameBuffer(const QString& folder);

    /// Whether the cursor stands at the pointer. While windows are being drawn the answer may be
    /// wrong, so ask again.
    bool showsCursor(const XClient& client) const;
    /// The colour (0xRRGGBB) at a place of the screen, without asking the server.
    std::uint32_t colour(QPoint place) const;

private:
    QFile file;
    const uchar* bytes = nullptr;
    std::uint32_t firstPixel = 0, stride = 0;
};

} // namespace quenthisar::demo
