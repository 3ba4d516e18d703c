// SPDX-License-Identifier: MIT
#include "StartUp.h"

#include "demo/FrameBuffer.h"
#include "demo/Interrupt.h"

#include <functional>
#include <optional>
#include <stdexcept>
#include <thread>

namespace quenthisar::bench {

namespace {

using namespace std::chrono_literals;

constexpr int width = 1280, height = 800;
constexpr auto limit = 20s;
constexpr auto look = 200us; // each takes some 10 us

/// Whether the screen, black without a window, shows as much as the smaller of the two windows has
/// by far: half of 640 by 480 pixels.
bool showsWindow(const demo::FrameBuffer& screen) {
    constexpr int step = 16, enough = 640 / step * (480 / step) / 2;
    int shown = 0;
    for (int y = step / 2; y < height; y += step)
        for (int x = step / 2; x < width; x += step) shown += screen.colour({x, y}) != 0 ? 1 : 0;
    return shown >= enough;
}

void waitFor(bool wanted, const demo::FrameBuffer& screen) {
    for (const auto end = Clock::now() + limit; showsWindow(screen) != wanted;) {
        demo::throwIfInterrupted();
        if (Clock::now() > end) throw std::runtime_error("a window doesn't come or doesn't go");
        std::this_thread::sleep_for(look);
    }
}

} // namespace

StartUp measureStartUp(const demo::Programs& programs, const QString& emptyWindow, int rounds) {
    const QTemporaryDir folder;
    const demo::XServer host{QStringLiteral("%1x%2").arg(width).arg(height), folder.path()}, target;
    const demo::FrameBuffer screen{folder.path()};
    demo::Rig rig{
        {.programs = programs, .hostDisplay = host.display(), .targetDisplay = target.display()}};
    std::optional<demo::ChildProcess> empty;

    const auto timeOf = [&](const std::function<void()>& start, const std::function<void()>& end) {
        waitFor(false, screen);
        const auto before = Clock::now();
        start();
        waitFor(true, screen);
        const auto result = Clock::now() - before;
        end();
        return result;
    };
    StartUp result;
    for (int round = 0; round <= rounds; ++round) {
        const auto least = timeOf(
            [&] {
                empty.emplace(
                    emptyWindow, QStringList{},
                    demo::ChildProcess::Environment{
                        {QStringLiteral("DISPLAY"), host.display()},
                        {QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), rig.sessionBusAddress()},
                        {QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb")}});
            },
            [&] { empty.reset(); });
        const auto ours = timeOf([&] { rig.openProgram(); }, [&] { rig.endProgram(); });
        if (round == 0) continue;
        result.empty.push_back(least);
        result.program.push_back(ours);
    }
    return result;
}

} // namespace quenthisar::bench
