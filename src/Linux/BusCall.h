// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QObject>
#include <QPointer>

#include <functional>

namespace quenthisar {

/// One call over a bus that nobody waits for. Main thread.
class BusCall final : public QObject {
    Q_OBJECT

public:
    /// Gets the reply or the error.
    using Answer = std::function<void(const QDBusMessage&)>;

    /// `answer` is called later, if `context` is still there, and in the bus's order with the
    /// signals that the same connection gets: those before it were sent before the reply was.
    /// `milliseconds` as in QDBusConnection::asyncCall.
    static void send(const QDBusConnection& bus, const QDBusMessage& message, QObject* context,
                     Answer answer, int milliseconds = -1);

    Q_SLOT void replied(const QDBusMessage& reply);
    Q_SLOT void failed(const QDBusError& error, const QDBusMessage& message);

private:
    BusCall(const QDBusConnection& bus, QObject* context, Answer answer);

    const QDBusConnection bus; // a reply that finds its connection already going would outlive it
    const QPointer<QObject> context;
    const Answer answer;
};

} // namespace quenthisar
