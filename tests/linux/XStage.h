// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/XCursor.h"
#include "Linux/XDisplays.h"
#include "Linux/XEventTaps.h"
#include "demo/XServer.h"

#include <QTemporaryDir>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace quenthisar::test {

// X key codes, by position.
inline constexpr std::uint8_t keyA = 38, keyF20 = 198, capsLock = 66, numLock = 77,
                              leftControl = 37, leftShift = 50, leftAlt = 64, rightAlt = 108,
                              leftSuper = 133, volumeUp = 123, printScreen = 107;

/// Runs the event loop until `done` holds; false if it does not within `limit`.
bool runUntil(const std::function<bool()>& done,
              std::chrono::milliseconds limit = std::chrono::seconds(10));

class Witness;

/// Hands at the keyboard and the mouse, and a client that can be in the way.
class Injector {
public:
    void moveBy(int dx, int dy) const { fake(XCB_MOTION_NOTIFY, 1, dx, dy); }
    void moveTo(int x, int y) const { fake(XCB_MOTION_NOTIFY, 0, x, y); }
    void key(std::uint8_t code, bool isDown) const {
        fake(isDown ? XCB_KEY_PRESS : XCB_KEY_RELEASE, code);
    }
    void tap(std::uint8_t code) const { key(code, true), key(code, false); }
    void button(std::uint8_t number, bool isDown) const {
        fake(isDown ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, number);
    }
    void click(std::uint8_t number) const { button(number, true), button(number, false); }

    enum class Menu { core, xinput2 };
    /// As an open menu does; true when granted.
    bool grabAll(Menu kind = Menu::core) const;
    void ungrabAll(Menu kind = Menu::core) const;

    struct Pointer {
        int x = 0, y = 0;
        bool operator==(const Pointer&) const = default;
    };
    Pointer pointer() const;
    /// X's modifier bits that are on; -1 if the server is gone.
    int modifiers() const;
    void killAllBut(const Witness& witness) const;
    /// Gives the keyboard to a window, or to one of X's special ones.
    void focus(xcb_window_t window) const;
    /// Switches the layout's group: 0 is the first.
    void lockGroup(std::uint8_t group) const;
    /// Everything asked for has been done.
    void sync() const;
    int descriptor() const { return xcb_get_file_descriptor(connection->get()); }

private:
    bool grabMasters() const;
    void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0) const;

    std::unique_ptr<XConnection> connection = XConnection::open();
};

/// A client that has the focus and covers the screen.
class Witness {
public:
    Witness();
    /// The types of the input events that have arrived since the last call.
    std::vector<int> seen() const;
    int descriptor() const { return xcb_get_file_descriptor(connection->get()); }
    xcb_window_t window = 0;

private:
    std::unique_ptr<XConnection> connection = XConnection::open();
};

struct RecordingLog final : SystemLog {
    void log(std::string_view line) override { lines.emplace_back(line); }
    std::vector<std::string> lines;
};

struct Motion {
    std::int64_t x = 0, y = 0;
    bool operator==(const Motion&) const = default;
};

enum class Server { xvfb, xorg };

/// A server, the adapters on it as `main` would connect them, and one tap for everything.
class XStage {
public:
    explicit XStage(Server kind = Server::xvfb);
    ~XStage();

    /// Makes this the primary monitor; `geometry` and `output` as xrandr takes them.
    void setMonitor(const QString& name, const QString& geometry, const QString& output) const;
    /// Runs a program that changes something on the server.
    void run(const QString& command) const;
    void takeOver();
    void giveBack();
    /// Of the adapters, to the server.
    void loseConnections() const;
    /// The sum of what was delivered.
    Motion motion() const;
    std::vector<EventType> types() const;
    bool waitFor(EventType type);
    bool sees(EventType type) const;

    QTemporaryDir folder; // of the server
    demo::XServer server;
    struct Environment {
        explicit Environment(const demo::XServer& server);
    } environment{server};
    Injector hands;
    Witness witness;
    DesktopSpace space;
    RecordingLog log;
    XDisplays displays{space};
    XInputSession session{space, log};
    XEventTaps taps{session};
    XCursor cursor{session};
    std::vector<TapEvent> delivered;
    std::function<void(const TapEvent&)> onEvent = [](const TapEvent&) {};
    std::unique_ptr<EventTap> tap;
    std::unique_ptr<RunLoopSource> source;
};

} // namespace quenthisar::test
