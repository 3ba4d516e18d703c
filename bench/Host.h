// SPDX-License-Identifier: MIT
#pragma once

#include "Injection.h"

#include "demo/XClient.h"
#include "demo/XServer.h"

#include <QTemporaryDir>

namespace quenthisar::bench {

/// A server whose input is taken, with devices like real ones. Its pointer is not accelerated.
class Host {
public:
    /// Throws std::runtime_error if something doesn't start.
    Host();

    QString display() const { return server.display(); }
    pid_t pid() const { return server.pid(); }
    const demo::XClient& client() const { return xClient; }
    const Devices& devices() const { return itsDevices; }

private:
    demo::InputTestDevice deviceAt(const char* socket) const;

    const QTemporaryDir folder;
    const demo::XServer server;
    const demo::XClient xClient;
    const Devices itsDevices;
};

} // namespace quenthisar::bench
