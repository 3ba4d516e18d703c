// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/LastingBus.h"

#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <utility>

namespace quenthisar {

/// Sees to it that one program runs per session: the first has a name on the session bus, any other
/// asks the first to show its window. Without a session bus every program is the first; one that
/// was lost and is back finds the name taken again. Main thread; needs no application object yet.
class SingleInstance final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// Takes the name. If another program has it, waits up to 2 s for that one's answer.
    SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;
    /// Gives the name back.
    ~SingleInstance() override;

    /// Asks the program that has the name to end, without taking the name. False if there is none.
    static bool askToQuit();

    /// False: another program has the name and was asked; this one is to end.
    bool isFirst() const { return first; }

    // What another start, or the desktop, asks for; called on the main loop.

    void onActivate(std::function<void()> action) { activate = std::move(action); }
    void onQuit(std::function<void()> action) { quit = std::move(action); }
    /// From now on nothing is answered: another start waits until the name is free.
    void stopAnswering();

    // The methods on the bus.

    Q_SLOT void Activate(const QVariantMap& /*platformData*/) { activate(); }
    /// There are no documents.
    Q_SLOT void Open(const QStringList& /*uris*/, const QVariantMap& /*platformData*/) {
        activate();
    }
    /// "quit" is the only action.
    Q_SLOT void ActivateAction(const QString& action, const QVariantList& parameter,
                               const QVariantMap& platformData);

private:
    bool takeName();
    void takeNameAgain();

    LastingBus bus;
    bool first = true;
    std::function<void()> activate = [] {};
    std::function<void()> quit = [] {};
};

} // namespace quenthisar
