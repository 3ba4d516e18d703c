// SPDX-License-Identifier: MIT
#include "Linux/BluezPayloadWriter.h"

#include "Linux/BluezDaemon.h"
#include "Linux/InputPoll.h"

#include <QDBusUnixFileDescriptor>

#include <cerrno>
#include <fcntl.h>
#include <iterator>
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace quenthisar {

using namespace Qt::StringLiterals;

namespace {

// Asked again while another client has the characteristic to itself.
constexpr std::chrono::milliseconds acquireAgain{500};

/// The daemon refuses because of another client; it will not always.
bool isTaken(const QDBusMessage& reply) {
    const auto name = reply.errorName();
    return name == "org.bluez.Error.NotPermitted"_L1 || name == "org.bluez.Error.InProgress"_L1;
}

QVariantList writeArguments(const Payload& payload, const QString& type) {
    const QByteArray bytes(reinterpret_cast<const char*>(payload.data()), std::ssize(payload));
    return {bytes, QVariantMap{{u"type"_s, type}}};
}

CentralError errorOf(const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ErrorMessage) return std::nullopt;
    const auto text = reply.errorMessage();
    return (text.isEmpty() ? reply.errorName() : text).toStdString();
}

} // namespace

BluezPayloadWriter::BluezPayloadWriter(BluezDaemon& daemon, const Characteristic& characteristic,
                                       std::function<void()> hopeless)
    : daemon(daemon), target(characteristic), hopeless(std::move(hopeless)) {}

BluezPayloadWriter::~BluezPayloadWriter() {
    closeDescriptor();
}

void BluezPayloadWriter::request(const Payload& payload, Answer answer) {
    ++requests;
    // A dongle that demands encryption may make the user pair first: no limit.
    daemon.call(QString::fromStdString(target.handle), Bluez::gattCharacteristic, u"WriteValue"_s,
                writeArguments(payload, u"request"_s), BluezDaemon::Limit::none,
                guard.bind([this, answer = std::move(answer)](const QDBusMessage& reply) {
                    --requests;
                    flush();
                    answer(errorOf(reply)); // may destroy this
                }));
}

void BluezPayloadWriter::write(const Payload& payload) {
    if (way == Way::none) return;
    if (way == Way::descriptor && requests == 0 && queue.empty() && send(payload)) {
        queue.pass(payload);
        InputPoll::notePayload();
        return;
    }
    InputPoll::stir();
    if (!queue.push(payload, BluezPayloadQueue::Clock::now())) {
        queue.clear();
        closeDescriptor();
        way = Way::none;
        hopeless();
        return;
    }
    if (!writable || !writable->isEnabled()) flush();
}

void BluezPayloadWriter::flush() {
    if (requests > 0) return;
    switch (way) {
    case Way::unknown: acquire(); return;
    case Way::acquiring:
    case Way::taken:
    case Way::none: return;
    case Way::descriptor: sendThroughDescriptor(); return;
    case Way::commands: sendCommand(); return;
    }
}

void BluezPayloadWriter::acquire() {
    way = Way::acquiring;
    daemon.call(
        QString::fromStdString(target.handle), Bluez::gattCharacteristic, u"AcquireWrite"_s,
        {QVariantMap{}}, BluezDaemon::Limit::none, guard.bind([this](const QDBusMessage& reply) {
            if (isTaken(reply)) {
                waitForOthers();
                return;
            }
            way = Way::commands;
            if (reply.signature() == "hq"_L1)
                take(reply.arguments().at(0).value<QDBusUnixFileDescriptor>().fileDescriptor());
            flush();
        }));
}

void BluezPayloadWriter::waitForOthers() {
    way = Way::taken; // commands are refused just so
    daemon.queue().after(acquireAgain, guard.bind([this] {
        if (way != Way::taken) return;
        way = Way::unknown;
        if (!queue.empty()) flush();
    }));
}

void BluezPayloadWriter::take(int acquired) {
    descriptor = ::fcntl(acquired, F_DUPFD_CLOEXEC, 0); // the reply closes its own
    if (descriptor < 0) return;
    way = Way::descriptor;
    carried = false;
    writable = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Write);
    writable->setEnabled(false);
    QObject::connect(writable.get(), &QSocketNotifier::activated, writable.get(),
                     [this] { flush(); });
}

/// False with `errno` if the descriptor did not take it.
bool BluezPayloadWriter::send(const Payload& payload) {
    if (::send(descriptor, payload.data(), payload.size(), MSG_DONTWAIT | MSG_NOSIGNAL) < 0)
        return false;
    carried = true;
    return true;
}

void BluezPayloadWriter::sendThroughDescriptor() {
    queue.dropStale(BluezPayloadQueue::Clock::now());
    while (!queue.empty()) {
        if (send(queue.front())) {
            queue.pop();
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            break;
        } else if (errno != EINTR) {
            // The far end closed it: the link is going down, or else there is another to be had.
            // One that never carried anything is not asked for again.
            closeDescriptor();
            way = carried ? Way::unknown : Way::commands;
            flush();
            return;
        }
    }
    writable->setEnabled(!queue.empty());
}

void BluezPayloadWriter::sendCommand() {
    if (commandUnderWay) return;
    queue.dropStale(BluezPayloadQueue::Clock::now());
    if (queue.empty()) return;
    commandUnderWay = true;
    const auto entry = queue.take();
    daemon.call(QString::fromStdString(target.handle), Bluez::gattCharacteristic, u"WriteValue"_s,
                writeArguments(entry.payload, u"command"_s), BluezDaemon::Limit::none,
                guard.bind([this, entry](const QDBusMessage& reply) {
                    commandUnderWay = false;
                    if (isTaken(reply) && way == Way::commands) {
                        queue.putBack(entry);
                        waitForOthers();
                        return;
                    }
                    flush();
                }));
}

void BluezPayloadWriter::closeDescriptor() {
    // It may be the notifier's own signal that brought us here.
    if (writable) {
        writable->setEnabled(false);
        writable.release()->deleteLater();
    }
    if (descriptor >= 0) ::close(std::exchange(descriptor, -1));
}

bool BluezPayloadWriter::isDrained() const {
    if (requests > 0 || way == Way::acquiring || commandUnderWay || !queue.empty()) return false;
    int waiting = 0;
    return descriptor < 0 || ::ioctl(descriptor, SIOCOUTQ, &waiting) != 0 || waiting == 0;
}

} // namespace quenthisar
