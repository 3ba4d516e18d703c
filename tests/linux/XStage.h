// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/XCursor.h"
#include "Linux/XDisplays.h"
#include "Linux/XEventTaps.h"
#include "demo/InputTestDevice.h"
#include "demo/XorgServer.h"
#include "support/RunUntil.h"

#include <QCoreApplication>
#include <QPoint>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace quenthisar::test {

// X key codes, by position.
inline constexpr std::uint8_t keyA = 38, keyF20 = 198, capsLock = 66, numLock = 77,
                              leftControl = 37, leftShift = 50, leftAlt = 64, rightAlt = 108,
                              leftSuper = 133, volumeUp = 123, printScreen = 107, menuKey = 135;

/// Another program: its window has the focus and covers the screen, and it can be in the way.
class Neighbour {
public:
    Neighbour();

    /// The types of the input events that have arrived since the last call.
    std::vector<int> seen() const;

    /// As an open menu does; true when granted.
    bool grabAll() const;
    void ungrabAll() const;
    /// By synthetic input.
    void moveTo(int x, int y) const;

    QPoint pointer() const { return {query()->root_x, query()->root_y}; }
    /// X's modifier bits that are on.
    int modifiers() const { return query()->mask & 0xFF; }
    /// Ends the connection that a resource belongs to.
    void kill(std::uint32_t resource) const;

private:
    XOwned<xcb_query_pointer_reply_t> query() const;

    std::unique_ptr<XConnection> connection = XConnection::open();
};

struct RecordingLog final : SystemLog {
    void log(std::string_view line) override { lines.emplace_back(line); }
    std::vector<std::string> lines;
};

/// Xorg with devices like real ones, the adapters on it as `main` would connect them, and one tap
/// for everything.
class XStage {
public:
    XStage();

    /// Runs a program that changes something on the server.
    void run(const char* command) const;
    void takeOver() {
        cursor.associateMouseAndMouseCursorPosition(false);
        cursor.displayHideCursor();
    }
    void giveBack();
    /// Of the tap, which holds the input.
    void loseConnection() const { neighbour.kill(holder); }
    QString socket(const char* device) const {
        return folder.filePath(QString::fromLatin1(device));
    }

    /// The sum of what was delivered.
    QPoint motion() const;
    std::vector<EventType> types() const;
    std::vector<EventType> typesWithoutMotion() const;
    std::uint64_t lastFlags() const { return delivered.empty() ? 0 : delivered.back().flags; }
    std::ptrdiff_t count(EventType type) const {
        return std::ranges::count(delivered, type, &TapEvent::type);
    }
    bool sees(EventType type) const { return count(type) > 0; }
    bool waitFor(EventType type) const {
        return runUntil([&] { return sees(type); });
    }
    bool waitForLocation(Point place) const {
        return runUntil([&] { return !delivered.empty() && delivered.back().location == place; });
    }
    /// Clicks with the middle button: all that was done before it has been delivered then.
    void finish() const {
        mouse.click(2);
        EXPECT_TRUE(waitFor(EventType::otherMouseUp));
    }

    QTemporaryDir folder; // of the server
    demo::XServer server;
    struct Environment {
        explicit Environment(const demo::XServer& server);
    } environment{server};
    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    QCoreApplication application{argumentCount, list};
    demo::InputTestDevice mouse{socket("mouse")}, keyboard{socket("keyboard")},
        tablet{socket("tablet")};
    Neighbour neighbour;
    DesktopSpace space;
    RecordingLog log;
    XDisplays displays{space};
    std::uint32_t holder = 0;
    XInputSession session{space, log, [this](std::uint32_t resource) { holder = resource; }};
    XEventTaps taps{session};
    XCursor cursor{session};
    std::vector<TapEvent> delivered;
    std::function<void(const TapEvent&)> onEvent = [](const TapEvent&) {};
    std::unique_ptr<EventTap> tap;
    std::unique_ptr<RunLoopSource> source;
};

} // namespace quenthisar::test
