// SPDX-License-Identifier: MIT
#include "Subject.h"

#include "Host.h"

#include "demo/Crossing.h"
#include "demo/ReportLine.h"

#include <stdexcept>
#include <thread>

namespace quenthisar::bench {

namespace {

using namespace std::chrono_literals;
using demo::XServer;

constexpr auto startLimit = 20s;
/// Written at once, each line would wake its reader within what is measured.
constexpr auto lineDelay = 500ms;
/// Until the panel of a takeover has faded out: it is no part of what an event costs.
constexpr auto panelGone = 3500ms;

class Direct final : public Subject {
public:
    const char* name() const override { return "direct"; }
    const Devices& devices() const override { return host.devices(); }
    QString targetDisplay() const override { return host.display(); }
    QList<pid_t> servers() const override { return {host.pid()}; }

private:
    const Host host;
};

class Floor final : public Subject {
public:
    explicit Floor(const QString& program) : process(program, {host.display(), target.display()}) {
        if (process.readLine(startLimit) != QStringLiteral("ready"))
            throw std::runtime_error("the least program does not start");
    }

    const char* name() const override { return "floor"; }
    const Devices& devices() const override { return host.devices(); }
    QString targetDisplay() const override { return target.display(); }
    QList<pid_t> servers() const override { return {host.pid(), target.pid()}; }
    QList<pid_t> processes() override { return {process.pid()}; }

private:
    const Host host;
    const XServer target;
    demo::ChildProcess process;
};

class Takeover final : public ProgramSubject {
public:
    explicit Takeover(const demo::Programs& programs)
        : rig({.programs = programs,
               .hostDisplay = host.display(),
               .targetDisplay = target.display(),
               .lineDelay = lineDelay}) {
        rig.startProgram();
        if (!crossing.enter(startLimit))
            throw std::runtime_error("crossing the edge does not take over");
        std::this_thread::sleep_for(panelGone);
        mark = rig.dongle().mark();
    }

    const char* name() const override { return "program"; }
    const Devices& devices() const override { return host.devices(); }
    QString targetDisplay() const override { return target.display(); }
    QList<pid_t> servers() const override { return {host.pid(), target.pid()}; }
    QList<pid_t> processes() override { return programOnly() + dongle(); }
    QList<pid_t> dongle() override { return {rig.dongle().process().pid()}; }
    QList<pid_t> programOnly() override { return {rig.quenthisar().pid()}; }

    // A full pipe would stop the dongle.
    void attend() override { rig.dongle().mark(); }

    std::optional<std::size_t> takePayloads() override {
        std::this_thread::sleep_for(2 * lineDelay);
        const auto lines = rig.dongle().since(mark);
        mark += lines.size();
        return demo::reportLines(lines).size();
    }

    void leave() override {
        crossing.pressReturnChord();
        if (!crossing.hostPointerMoves(startLimit))
            throw std::runtime_error("the return chord does not return");
        const demo::Hands hands{host.client()};
        hands.moveBy({-600, 0});
    }

private:
    const Host host;
    const XServer target;
    demo::Rig rig;
    demo::Crossing crossing{host.client(), rig};
    qsizetype mark = 0;
};

} // namespace

std::unique_ptr<ProgramSubject> ProgramSubject::start(const demo::Programs& programs) {
    return std::make_unique<Takeover>(programs);
}

std::unique_ptr<Subject> startDirect() {
    return std::make_unique<Direct>();
}

std::unique_ptr<Subject> startFloor(const QString& program) {
    return std::make_unique<Floor>(program);
}

} // namespace quenthisar::bench
