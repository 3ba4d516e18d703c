// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/BusPeer.h"

namespace quenthisar {

/// The desktop's screen saver (org.freedesktop.ScreenSaver), which covers the session while it is
/// active. Main thread.
class ScreenSaver final : public QObject {
    Q_OBJECT

public:
    /// `read` is called later, with whether it is active, after each reading, changed or not. One
    /// that has gone is not.
    ScreenSaver(const Bus& bus, std::function<void(bool isActive)> read);

private:
    Q_SLOT void activeChanged(const QDBusMessage& signal);
    void ask(int pathNumber);

    std::function<void(bool)> read;
    BusPeer service;
};

} // namespace quenthisar
