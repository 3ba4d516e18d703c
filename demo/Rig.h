// SPDX-License-Identifier: MIT
#pragma once

#include "Recorder.h"
#include "XServer.h"

#include <QTemporaryDir>

#include <optional>

namespace quenthisar::demo {

/// Where the programs are.
struct Programs {
    QString quenthisar, dongle, desk;
    static Programs in(const QString& folder);
};

/// A virtual dongle whose target is one display, and the program at another one, whose right edge
/// is bound to it. The link between the two is a bus of their own.
class Rig {
public:
    struct Options {
        Programs programs;
        QString hostDisplay;
        QString targetDisplay;
        bool cornerSlam = false;
        /// False on somebody's own desktop: the program gets its session as it is.
        bool ownSession = true;
        /// The file that the program's standard error goes to; where empty, this one's.
        QString programErrors{};
        /// Of the program, besides what each rig gives it; comes last.
        ChildProcess::Environment programEnvironment{};
        ChildProcess::LineHandler onDongleLine{};
        /// How long the dongle's lines wait to be written together.
        std::chrono::milliseconds lineDelay{0};
    };

    /// Starts the dongle, not the program. Throws std::runtime_error if something doesn't start.
    explicit Rig(Options options);

    /// Starts the program, anew if it ended, and waits until it has connected to the dongle. In a
    /// session of its own its window is closed again. Throws std::runtime_error if it doesn't
    /// start.
    void startProgram();
    /// Starts the program and waits for nothing.
    void openProgram();
    /// Starts the program as the user does who does not see that it runs.
    std::unique_ptr<ChildProcess> startOnceMore() const;
    /// Ends the program as a session manager does. Without effect if it doesn't run.
    void endProgram() { program.reset(); }

    Recorder& dongle() { return *dongleProgram; }
    /// Anew, after the loss of its bus. What it has told before is forgotten.
    void startDongle();
    /// Only after `startProgram`.
    ChildProcess& quenthisar() { return *program; }
    QString configurationFolder() const { return folder.path(); }
    QString displayUuid() const { return boundDisplay; }
    /// What the program calls the dongle, without a nickname.
    QString dongleName() const;
    /// Where the program's settings are.
    QString settingsFile() const;
    /// Where the dongle can be asked for faults, and whoever else the program should find.
    QString systemBusAddress() const { return systemBus.address(); }
    /// Of the program's desktop. Only with a session of its own.
    QString sessionBusAddress() const { return sessionBus->address(); }
    PrivateBus& systemBusProgram() { return systemBus; }
    PrivateBus& sessionBusProgram() { return *sessionBus; }

private:
    ChildProcess::Environment environment() const;
    void writeSettings();

    Options options;
    QTemporaryDir folder;
    PrivateBus systemBus;
    std::optional<PrivateBus> sessionBus;
    std::optional<Recorder> dongleProgram;
    QString boundDisplay;
    std::unique_ptr<ChildProcess> program; // ends before all that it uses
};

} // namespace quenthisar::demo
