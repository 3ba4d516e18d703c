// SPDX-License-Identifier: MIT
#include "AppDelegate.h"
#include "Linux/AutostartItem.h"
#include "Linux/BluezCentral.h"
#include "Linux/DesktopSpace.h"
#include "Linux/ExitSignals.h"
#include "Linux/Guard.h"
#include "Linux/JsonFileDefaults.h"
#include "Linux/QtMainQueue.h"
#include "Linux/QtSerialQueue.h"
#include "Linux/SessionLock.h"
#include "Linux/SingleInstance.h"
#include "Linux/SpawnLauncher.h"
#include "Linux/StandardErrorLog.h"
#include "Linux/TrayStatusItem.h"
#include "Linux/X11AccessibilityTrust.h"
#include "Linux/XConnection.h"
#include "Linux/XCursor.h"
#include "Linux/XDisplays.h"
#include "Linux/XEventTaps.h"
#include "Linux/XHotkeys.h"
#include "Linux/XInputSession.h"
#include "Linux/XPanel.h"
#include "Linux/XPasteboard.h"
#include "Linux/XToolkit.h"
#include "UI/Qt/ConfigWindowWidget.h"
#include "UI/Qt/FontLookup.h"
#include "UI/Qt/HUDWidget.h"
#include "UI/Qt/Style.h"
#include "UI/Qt/Symbols.h"

#include <QApplication>
#include <QIcon>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

/// How long the end of the program waits for the daemon to take the last payloads.
constexpr std::chrono::milliseconds lastWrites{150};

/// Hands what comes on sockets straight on: nobody filters it, and each move at the host is among
/// it.
class Application final : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override {
        return event->type() == QEvent::SockAct ? receiver->event(event)
                                                : QApplication::notify(receiver, event);
    }
};

/// Panels around the widget that draws them.
class Panels final : public quenthisar::HUDPanels {
public:
    explicit Panels(const quenthisar::DesktopSpace& desktop) : space(desktop) {}

    std::shared_ptr<quenthisar::Panel> create(const quenthisar::HUDView& view) override {
        using namespace quenthisar;
        auto widget = std::make_unique<HUDWidget>(view);
        if (!XPanel::isComposited()) widget->makeSolid();
        return std::make_shared<XPanel>(space, std::move(widget));
    }

private:
    const quenthisar::DesktopSpace& space;
};

QPixmap drawTemplate(const QString& name, int pixels, const QColor& tint) {
    return quenthisar::symbol(name, {pixels, pixels}, tint, 1);
}

/// The configuration window.
class Windows final : public quenthisar::ConfigWindows {
public:
    std::unique_ptr<quenthisar::ConfigWindow> create(const quenthisar::ConfigView& view) override {
        using namespace quenthisar;
        // Asked for by the user, wherever that was: no window manager is to hold it back.
        return std::make_unique<ConfigWindowWidget>(view, XToolkit::activate);
    }
};

/// While the main loop runs. The toolkit ends the process by itself when it loses the X server.
quenthisar::EventTapController* running = nullptr;

/// Where one is closed, a connection would get its number, and the log would go there.
void openStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0) ::open("/dev/null", O_RDWR);
}

quenthisar::JsonFileDefaults* settings = nullptr;

/// The target must not keep what is held down there.
void releaseTarget() {
    if (auto* controller = std::exchange(running, nullptr)) controller->stop();
}

void endWithoutDestructors() {
    releaseTarget();
    if (settings) settings->flush();
}

/// What the user types must not land in a core dump.
void switchOffCoreDumps() {
    // The hard limit stays: what hooks start may raise its own again.
    rlimit limit{};
    if (::getrlimit(RLIMIT_CORE, &limit) == 0) {
        limit.rlim_cur = 0;
        ::setrlimit(RLIMIT_CORE, &limit);
    }
    // The limit does not count where core_pattern hands dumps to a program; this does.
    ::prctl(PR_SET_DUMPABLE, 0);
}

} // namespace

int main(int count, char** argv) {
    using namespace quenthisar;
    switchOffCoreDumps();
    std::signal(SIGPIPE, SIG_IGN);
    openStandardStreams();
    if (count > 1 && argv[1] == std::string_view{"--quit"})
        return SingleInstance::askToQuit() ? EXIT_SUCCESS : EXIT_FAILURE;
    Guard guard;
    SingleInstance instance;
    if (!instance.isFirst()) return EXIT_SUCCESS;

    StandardErrorLog log;
    // The toolkit would abort. Under Wayland it has a display, and the user gets a prompt.
    if (!XConnection::open() && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        log.log("Quenthisar: there is no display; it needs an X11 session");
        return EXIT_FAILURE;
    }

    // There are no other command-line options, the toolkit's included.
    int argumentCount = 1;
    const Application application(argumentCount, argv);
    const FontLookup fontLookup; // beside all that shows no text
    XToolkit::ignoreButtonStates();
    QApplication::setStyle(new Style);
    QApplication::setApplicationName(QStringLiteral("Quenthisar"));
    QApplication::setDesktopFileName(QStringLiteral("com.vornack.quenthisar"));
    QApplication::setWindowIcon(QIcon{QStringLiteral(":/icons/com.vornack.quenthisar.svg")});
    QApplication::setQuitOnLastWindowClosed(false);
    const ExitSignals exitSignals([] { QApplication::quit(); });
    instance.onQuit([] { QApplication::quit(); });

    QtMainQueue queue;
    JsonFileDefaults defaults(JsonFileDefaults::standardPath(), log);
    DesktopSpace space;
    XDisplays displays(space);
    XInputSession input(space, log,
                        [&guard](std::uint32_t resource) { guard.setInputHolder(resource); });
    XEventTaps taps(input);
    XCursor cursor(input);
    X11AccessibilityTrust trust;
    BluezCentral central;
    // In a takeover or out of it: text and chords are typed at any time, and what is written takes
    // a while to arrive.
    central.onLinks([&guard](const QStringList& objectPaths) {
        std::vector<std::string> dongles;
        for (const auto& path : objectPaths) dongles.push_back(path.toStdString());
        guard.setDongles(std::move(dongles));
    });
    AutostartItem loginItem(AutostartItem::standardPath(), QApplication::applicationFilePath());
    SpawnLauncher launcher;
    XHotkeys hotkeys(input);
    Panels panels(space);
    XPasteboard pasteboard;
    QtSerialQueue typingQueue;
    TrayStatusBar statusBar(Bus::session(), drawTemplate);
    Windows windows;

    AppDelegate delegate({queue, defaults, displays, taps, cursor, trust, central, loginItem,
                          launcher, log, hotkeys, panels, pasteboard, typingQueue, statusBar,
                          windows});
    delegate.applicationDidFinishLaunching();
    instance.onActivate([&delegate] { delegate.showWindow(); });
    const SessionLock lock([&input](bool isLocked) { input.setDeaf(isLocked); });
    running = delegate.eventTap.get();
    settings = &defaults;
    std::atexit(endWithoutDestructors);
    const int result = QApplication::exec();

    settings = nullptr;
    // Whoever starts the program now shall not be told that it runs.
    instance.stopAnswering();
    // What is typed must not follow the releases.
    typingQueue.finish();
    queue.finish();
    releaseTarget();
    input.setDeaf(true);
    // A profile's chord may wait for its release.
    for (const auto& dongle : *delegate.state.dongles)
        delegate.dongleManager->send(Report::allKeysUp(), dongle.id);
    // The daemon keeps the links for the next start, unless something may still be held.
    if (central.drain(lastWrites)) guard.setDongles({});
    return result;
}
