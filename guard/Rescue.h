// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct xcb_connection_t;

namespace quenthisar::guard {

/// Closes connections of other clients of the X server that DISPLAY names.
class XRescue {
public:
    /// Connects at once: when it is needed the server may take no more clients.
    XRescue();
    ~XRescue();
    XRescue(const XRescue&) = delete;
    XRescue& operator=(const XRescue&) = delete;

    /// Closes the connection that owns `resource`. The server then drops its grabs and barriers
    /// and shows the cursor. Without effect when the resource or the server is gone.
    void killClient(std::uint32_t resource);

    /// Readable when something has come that is to be thrown away; -1 while there is no server.
    int descriptor() const;
    void drain();

private:
    bool connect();

    xcb_connection_t* connection = nullptr;
};

/// Asks the Bluetooth daemon to end the links to the devices at `paths`, all at once, and waits for
/// its answers, a few seconds at most. The dongles then release all that is held on their targets.
void disconnectDongles(const std::vector<std::string>& paths);

} // namespace quenthisar::guard
