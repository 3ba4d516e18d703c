// SPDX-License-Identifier: MIT
#pragma once

#include "Injection.h"

#include "demo/Rig.h"

#include <memory>
#include <optional>
#include <vector>

namespace quenthisar::bench {

/// A way from the input of one X server to another one. Each subject has servers of its own, all
/// alike, and stays ready while others are measured: it is idle then.
class Subject {
public:
    virtual ~Subject() = default;

    virtual const char* name() const = 0;
    /// Where input is made, and where it arrives.
    virtual const Devices& devices() const = 0;
    virtual QString targetDisplay() const = 0;
    virtual QList<pid_t> servers() const = 0;
    /// Those that bring the input over.
    virtual QList<pid_t> processes() { return {}; }
    /// Of these, the virtual dongle, if it takes part.
    virtual QList<pid_t> dongle() { return {}; }
    /// To be called every now and then while input is made.
    virtual void attend() {}
    /// How many payloads have gone over the link since the last call; none if there is no link.
    virtual std::optional<std::size_t> takePayloads() { return std::nullopt; }
};

/// Quenthisar with a virtual dongle, in a takeover.
class ProgramSubject : public Subject {
public:
    /// Throws std::runtime_error if it doesn't come to a takeover, here and below.
    static std::unique_ptr<ProgramSubject> start(const demo::Programs& programs);
    /// Returns to the host, whose pointer is far from any edge at its sides then.
    virtual void leave() = 0;
    virtual QList<pid_t> programOnly() = 0;
};

/// One server: what the measurement itself takes.
std::unique_ptr<Subject> startDirect();
/// Two servers, and the least program between them.
std::unique_ptr<Subject> startFloor(const QString& program);

} // namespace quenthisar::bench
