// SPDX-License-Identifier: MIT
#include "AppDelegate.h"
#include "Linux/AutostartItem.h"
#include "Linux/BluezCentral.h"
#include "Linux/DesktopSpace.h"
#include "Linux/ExitSignals.h"
#include "Linux/JsonFileDefaults.h"
#include "Linux/QtMainQueue.h"
#include "Linux/SpawnLauncher.h"
#include "Linux/StandardErrorLog.h"
#include "Linux/X11AccessibilityTrust.h"
#include "Linux/XConnection.h"
#include "Linux/XCursor.h"
#include "Linux/XDisplays.h"
#include "Linux/XEventTaps.h"
#include "Linux/XInputSession.h"

#include <QApplication>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <utility>

namespace {

/// How long the end of the program waits for the daemon to take the last payloads.
constexpr std::chrono::milliseconds lastWrites{150};

/// While the main loop runs. The toolkit ends the process by itself when it loses the X server.
quenthisar::EventTapController* running = nullptr;

/// The target must not keep what is held down there.
void releaseTarget() {
    if (auto* controller = std::exchange(running, nullptr)) controller->stop();
}

} // namespace

int main(int, char** argv) {
    using namespace quenthisar;
    std::signal(SIGPIPE, SIG_IGN);

    StandardErrorLog log;
    // The toolkit would abort. Under Wayland it has a display, and the user gets a prompt.
    if (!XConnection::open() && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        log.log("Quenthisar: there is no display; it needs an X11 session");
        return EXIT_FAILURE;
    }

    // There are no command-line options, the toolkit's included.
    int argumentCount = 1;
    const QApplication application(argumentCount, argv);
    QApplication::setApplicationName(QStringLiteral("Quenthisar"));
    QApplication::setQuitOnLastWindowClosed(false);
    const ExitSignals exitSignals([] { QApplication::quit(); });

    QtMainQueue queue;
    JsonFileDefaults defaults(JsonFileDefaults::standardPath(), log);
    DesktopSpace space;
    XDisplays displays(space);
    XInputSession input(space, log);
    XEventTaps taps(input);
    XCursor cursor(input);
    X11AccessibilityTrust trust;
    BluezCentral central;
    AutostartItem loginItem(AutostartItem::standardPath(), QApplication::applicationFilePath());
    SpawnLauncher launcher;

    AppDelegate delegate(
        {queue, defaults, displays, taps, cursor, trust, central, loginItem, launcher, log});
    delegate.applicationDidFinishLaunching();
    running = delegate.eventTap.get();
    std::atexit(releaseTarget);
    const int result = QApplication::exec();

    releaseTarget();
    central.drain(lastWrites);
    return result;
}
