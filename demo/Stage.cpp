// SPDX-License-Identifier: MIT
#include "Stage.h"

#include "DeskLines.h"

namespace quenthisar::demo {

namespace {

using namespace std::chrono_literals;

constexpr auto oneTry = 150ms;
const QString screenSize = QStringLiteral("1280x800");

} // namespace

Stage::Stage(const Options& options)
    : displayOfHost(options.hostDisplay.isEmpty()
                        ? hostServer.emplace(screenSize, frameFolder.path()).display()
                        : options.hostDisplay),
      targetServer(screenSize), host(displayOfHost), target(targetServer.display()), hands(host),
      hostDesk(options.programs, QStringLiteral("host"), displayOfHost),
      targetDesk(options.programs, QStringLiteral("target"), targetServer.display()),
      rig({.programs = options.programs,
           .hostDisplay = displayOfHost,
           .targetDisplay = targetServer.display(),
           .cornerSlam = options.cornerSlam,
           .programErrors = options.programErrors,
           .programEnvironment = options.programEnvironment,
           .onDongleLine = options.onDongleLine}),
      crossing(host, rig) {
    if (hostServer) hostFrames.emplace(frameFolder.path());
    host.switchOffAcceleration();
    target.switchOffAcceleration();
}

bool Stage::hostKeyboardWorks(std::chrono::milliseconds limit) {
    const auto attempt = [this] {
        const auto mark = hostDesk.mark();
        const auto isTyped = [](const QStringList& lines) {
            return DeskLines::typedText(lines).contains(u'h');
        };
        return hands.type(QStringLiteral("h"), 0ms) && hostDesk.waitFor(mark, isTyped, oneTry);
    };
    return retry(attempt, limit);
}

} // namespace quenthisar::demo
