// SPDX-License-Identifier: MIT
#include "TargetWindow.h"

#include "Binding.h"
#include "Desk.h"
#include "Interrupt.h"
#include "Narrator.h"
#include "Picture.h"
#include "ReportLine.h"

#include <algorithm>
#include <stdexcept>

namespace quenthisar::demo {

namespace {

using namespace std::chrono_literals;

QString userDisplay() {
    auto display = qEnvironmentVariable("DISPLAY");
    if (display.isEmpty()) throw std::runtime_error("there is no desktop here: DISPLAY is not set");
    if (qEnvironmentVariable("XDG_SESSION_TYPE") == u"wayland")
        throw std::runtime_error("this is a Wayland session; log in to an X11 session");
    return display;
}

QSize targetSize(const QRect& monitor) {
    const auto width = std::clamp(monitor.width() * 6 / 10, 480, 1280);
    return {width, width * 5 / 8};
}

class TargetWindow {
public:
    TargetWindow(const Programs& programs, QString picture)
        : picturePath(std::move(picture)), host(userDisplay()), edge(boundEdge()),
          server(targetSize(edge.monitor.frame), QStringLiteral("Quenthisar's virtual target")),
          target(server.display()), desk(programs, QStringLiteral("target"), server.display()),
          rig({.programs = programs,
               .hostDisplay = userDisplay(),
               .targetDisplay = server.display(),
               .cornerSlam = false,
               .ownSession = false,
               .onDongleLine = [this](const QString& line) { hear(line); }}) {}

    bool run() {
        rig.startProgram();
        explain();
        while (!isInterrupted() && server.isRunning()) {
            if (!rig.quenthisar().isRunning()) {
                narrator.say(QStringLiteral("\nQuenthisar ended."));
                return false;
            }
            rig.dongle().process().readLine(100ms);
        }
        narrator.say(QStringLiteral("\nEnding."));
        if (!isPictured && server.isRunning()) takePicture();
        // In this order, so that the target gets its releases while it is there to take them.
        rig.endProgram();
        return true;
    }

private:
    BoundEdge boundEdge() const {
        const auto found = rightEdge(host);
        if (!found) throw std::runtime_error("the X server has no monitor");
        return *found;
    }

    void explain() const {
        narrator.say(QStringLiteral(R"(
Quenthisar runs. The window "Quenthisar's virtual target" stands for another computer.
  There:  push the pointer against the right edge of your screen%1. Keyboard and mouse now are the target's.
  Back:   hold Control, Alt and Super (Command) together.
  End:    close the window, or Ctrl+C here.
Each report to the dongle is printed as it arrives.
)")
                         .arg(host.monitors().size() > 1 ? u' ' + edge.monitor.name : QString{}));
    }

    void hear(const QString& line) {
        narrator.report(line);
        const auto report = reportLine(line);
        if (!report) return;
        // A takeover ends with all keys up and then all buttons up, without motion.
        const auto isReturn = wasKeysUp && report->isMouse() && report->isAllUp() &&
                              report->motion().isNull() && report->wheel() == 0;
        wasKeysUp = report->isKeyboard() && report->isAllUp();
        if (isReturn && !isPictured) takePicture();
    }

    void takePicture() {
        const auto desktop = host.picture().copy(edge.monitor.frame);
        const auto screen = target.picture();
        if (desktop.isNull() || screen.isNull()) return;
        const auto image = sideBySide({.image = desktop, .label = QStringLiteral("Your desktop")},
                                      {.image = screen, .label = QStringLiteral("Virtual target")},
                                      QStringLiteral("After a takeover across the right edge"));
        isPictured = image.save(picturePath);
        if (isPictured) narrator.say(QStringLiteral("Picture of both screens: ") + picturePath);
    }

    const QString picturePath;
    Narrator narrator;
    bool wasKeysUp = false;
    bool isPictured = false;
    const XClient host;
    const BoundEdge edge;
    NestedXServer server;
    const XClient target;
    Desk desk;
    Rig rig;
};

} // namespace

bool runTargetWindow(const Programs& programs, const QString& picture) {
    return TargetWindow{programs, picture}.run();
}

} // namespace quenthisar::demo
