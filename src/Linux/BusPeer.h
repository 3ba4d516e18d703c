// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/BusCall.h"
#include "Linux/LastingBus.h"

#include <QDBusMessage>
#include <QObject>

#include <functional>
#include <vector>

namespace quenthisar {

/// A service on a bus, by its well-known name, as its owner comes and goes, and the bus itself. It
/// is never started from here, and nothing waits for it. Main thread.
class BusPeer final : public QObject {
    Q_OBJECT

public:
    using Answer = BusCall::Answer;

    /// `ownerChanged` is called later: when the service is found, and after each change. A service
    /// that is replaced goes before it comes.
    BusPeer(const Bus& bus, const QString& name, std::function<void()> ownerChanged);

    bool isThere() const { return !owner.isEmpty(); }
    bool sent(const QDBusMessage& signal) const { return isThere() && signal.service() == owner; }

    /// Hands signals to a slot of `receiver` that takes the message. Anybody may send them: ask
    /// `sent`. An empty `path` stands for all; `firstArgument`, if any, must be that of the signal.
    void subscribe(const QString& path, const QString& interface, const QString& signal,
                   QObject* receiver, const char* slot, const QString& firstArgument = {});

    /// Calls the present owner. `answer` gets its reply or error, later, unless the owner has
    /// changed by then.
    void call(const QString& path, const QString& interface, const QString& method,
              const QVariantList& arguments, Answer answer);
    /// The same for a read of properties.
    void get(const QString& path, const QString& interface, const QString& property, Answer answer);
    void getAll(const QString& path, const QString& interface, Answer answer);

private:
    Q_SLOT void nameOwnerChanged(const QDBusMessage& signal);
    struct Subscription {
        QString path, interface, signal;
        QStringList match;
        QObject* receiver;
        const char* slot;
    };

    void listen();
    void connectTo(const Subscription& subscription);
    void setOwner(const QString& next);

    const QString name;
    std::function<void()> ownerChanged;
    bool isKnown = false; // whether there is an owner
    QString owner;        // its unique name
    std::vector<Subscription> subscriptions;
    LastingBus bus; // last, so that it goes first
};

} // namespace quenthisar
