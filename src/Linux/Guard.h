// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>

#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quenthisar {

/// The process that gives the desktop back when this one hangs while it holds the session's input,
/// and has the dongles released when this one dies. Main thread; without it everything else works.
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
    /// The Bluetooth daemon's objects of the dongles on whose targets something may be held.
    void setDongles(std::vector<std::string> objectPaths);

private:
    /// `full`: it doesn't read at the moment. `gone`: it was ended from outside.
    enum class Delivery { taken, full, gone };

    Delivery start();
    void stop();
    void report();
    void reap();
    std::string message() const;
    Delivery send(const std::string& text) const;

    int channel = -1;
    std::vector<pid_t> processes; // the latest, and those before it that are still to be reaped
    std::uint32_t holder = 0;
    std::vector<std::string> dongles;
    bool told = true;                // the latest; if not, it is told again each 500 ms
    std::optional<QTimer> heartbeat; // a timer needs an application
};

} // namespace quenthisar
