// SPDX-License-Identifier: MIT
#include "Rig.h"

#include "Binding.h"
#include "ConfigurationWindow.h"
#include "ReportLine.h"

#include <algorithm>
#include <stdexcept>

namespace quenthisar::demo {

namespace {

using namespace std::chrono_literals;

constexpr auto startLimit = 20s;
const QString dongleAddress = QStringLiteral("C0:FF:EE:00:00:01");

QStringList dongleArguments(const Rig::Options& options) {
    return {QStringLiteral("--address"),    dongleAddress,
            QStringLiteral("--name"),       QStringLiteral("Target"),
            QStringLiteral("--display"),    options.targetDisplay,
            QStringLiteral("--line-delay"), QString::number(options.lineDelay.count())};
}

} // namespace

Programs Programs::in(const QString& folder) {
    return {.quenthisar = folder + QStringLiteral("/quenthisar"),
            .dongle = folder + QStringLiteral("/virtual-dongle"),
            .desk = folder + QStringLiteral("/desk")};
}

Rig::Rig(Options given) : options(std::move(given)) {
    if (options.ownSession) sessionBus.emplace();
    startDongle();
    writeSettings();
}

void Rig::startDongle() {
    dongleProgram.emplace(options.programs.dongle, dongleArguments(options),
                          ChildProcess::Environment{
                              {QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), systemBus.address()}});
    if (options.onDongleLine) dongleProgram->onLine(options.onDongleLine);
    if (!dongleProgram->waitForLine(QStringLiteral("ready"), startLimit))
        throw std::runtime_error("the virtual dongle does not start");
}

QString Rig::dongleName() const {
    return QStringLiteral("Target (%1)").arg(dongleUuid(dongleAddress).right(4));
}

void Rig::openProgram() {
    program.reset();
    program = startOnceMore();
}

QString Rig::settingsFile() const {
    return folder.filePath(QStringLiteral("quenthisar/defaults.json"));
}

void Rig::writeSettings() {
    const XClient host{options.hostDisplay};
    const auto edge = rightEdge(host);
    if (!edge) throw std::runtime_error("the X server has no monitor");
    boundDisplay = edge->displayUuid;
    if (!folder.isValid() ||
        !demo::writeSettings(folder.path(), {.displayUuid = boundDisplay,
                                             .dongleUuid = dongleUuid(dongleAddress),
                                             .cornerSlam = options.cornerSlam}))
        throw std::runtime_error("no settings can be written in " + folder.path().toStdString());
}

ChildProcess::Environment Rig::environment() const {
    ChildProcess::Environment result{
        {QStringLiteral("DISPLAY"), options.hostDisplay},
        {QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), systemBus.address()},
        {QStringLiteral("XDG_CONFIG_HOME"), folder.path()},
        {QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb")}};
    if (sessionBus) {
        result.emplace_back(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), sessionBus->address());
        result.emplace_back(QStringLiteral("XDG_SESSION_TYPE"), QStringLiteral("x11"));
        result.emplace_back(QStringLiteral("WAYLAND_DISPLAY"), QString{});
    }
    result.insert(result.end(), options.programEnvironment.begin(),
                  options.programEnvironment.end());
    return result;
}

std::unique_ptr<ChildProcess> Rig::startOnceMore() const {
    return std::make_unique<ChildProcess>(options.programs.quenthisar, QStringList{}, environment(),
                                          options.programErrors);
}

void Rig::startProgram() {
    program.reset();
    const XClient host{options.hostDisplay};
    const auto focus = focusedWindow(host);
    const auto mark = dongleProgram->mark();
    program = startOnceMore();
    const auto isProbed = [](const QStringList& lines) {
        return std::ranges::any_of(reportLines(lines), &ReportLine::isProbe);
    };
    const auto isDecided = [&] {
        return isProbed(dongleProgram->since(mark)) || !program->isRunning();
    };
    if (!waitUntil(isDecided, startLimit))
        throw std::runtime_error("the program does not connect to the dongle");
    if (!program->isRunning())
        throw std::runtime_error(program->waitForEnd(0ms) == 0 ? "the program runs already"
                                                               : "the program does not start");
    // Its window would be in the way of what has the keyboard there.
    if (options.ownSession && !closeConfigurationWindow(host, focus, startLimit))
        throw std::runtime_error("the program's window does not open and close");
}

} // namespace quenthisar::demo
