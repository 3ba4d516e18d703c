// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>

#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>

namespace quenthisar {

/// The process that gives the desktop back when this one hangs while it holds the session's input,
/// and has the dongle released when this one dies. Main thread; without it everything else works.
class Guard {
public:
    /// Starts the process, to be done before anything else is opened. Needs no event loop yet.
    Guard() { start(); }
    ~Guard();
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

    /// A resource of the X connection that holds the session's input, or 0. From now on the main
    /// loop is watched, or no more.
    void setInputHolder(std::uint32_t resource);
    /// The Bluetooth daemon's object of the dongle that gets the input, empty for none.
    void setDongle(std::string objectPath);

private:
    void start();
    void stop();
    void report();
    bool send(const std::string& message) const;

    int channel = -1;
    pid_t process = 0;
    std::uint32_t holder = 0;
    std::string dongle;
    std::optional<QTimer> heartbeat; // a timer needs an application
};

} // namespace quenthisar
