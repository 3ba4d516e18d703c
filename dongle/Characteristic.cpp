// SPDX-License-Identifier: MIT
#include "Characteristic.h"

#include "Bluez.h"
#include "Later.h"

#include <QDBusArgument>
#include <QDBusUnixFileDescriptor>

#include <QEvent>

#include <array>
#include <cerrno>
#include <chrono>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace quenthisar::dongle {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr ushort mtu = 247;
constexpr auto answerTime = 20ms;
// An ATT transaction that takes longer ends the link.
constexpr auto attTimeout = 30s;
constexpr std::size_t payloadsAtOnce = 8;
constexpr int drainedBatches = 8;

} // namespace

Characteristic::Characteristic(ObjectTree& objects, Agents& theAgents, Dongle& itsDongle,
                               QString itsPath, Owner itsOwner)
    : tree(objects), agents(theAgents), dongle(itsDongle), path(std::move(itsPath)),
      owner(std::move(itsOwner)) {}

Characteristic::~Characteristic() {
    closeDescriptor();
}

QVariantMap Characteristic::properties(const QString& service) {
    return {{u"UUID"_s, bluez::inputCharacteristic},
            {u"Service"_s, QVariant::fromValue(QDBusObjectPath{service})},
            {u"Value"_s, QByteArray{}},
            {u"Flags"_s, QStringList{u"write-without-response"_s, u"write"_s}},
            {u"WriteAcquired"_s, false},
            {u"MTU"_s, QVariant::fromValue(mtu)}};
}

bool Characteristic::call(const QDBusMessage& message, bool connected) {
    const auto member = message.member();
    const bool acquire = member == u"AcquireWrite";
    if (member != u"WriteValue" && !acquire) return false;
    if (acquire && dongle.faults.acquire == AcquireFault::missing) return false;
    if (!connected)
        tree.fail(message, bluez::failed, u"Not connected"_s);
    else if (descriptor >= 0)
        tree.fail(message, bluez::notPermitted, u"Write acquired"_s);
    else if (pending)
        tree.fail(message, bluez::inProgress, u"In Progress"_s);
    else if (acquire)
        acquireWrite(message);
    else
        writeValue(message);
    return true;
}

void Characteristic::writeValue(const QDBusMessage& message) {
    const auto value = message.arguments().value(0).toByteArray();
    const auto options = qdbus_cast<QVariantMap>(message.arguments().value(1));
    if (options.value(u"type"_s).toString() == u"command") {
        dongle.receive(Way::command, value);
        tree.reply(message);
        return;
    }
    pending = message;
    ++requests;
    if (dongle.faults.probe == ProbeFault::encrypt && !dongle.pairedWith.contains(owner.adapter))
        pairFirst(value);
    else
        request(value);
}

void Characteristic::request(const QByteArray& value) {
    dongle.receive(Way::request, value);
    const bool silent = dongle.faults.probe == ProbeFault::silent;
    const bool refused = dongle.faults.probe == ProbeFault::refuse;
    later(silent ? attTimeout : answerTime, this, [this, silent, refused, number = requests] {
        if (!pending || number != requests) return;
        if (silent)
            owner.dropLink(u"timeout"_s);
        else if (refused)
            answerRequest(bluez::failed, u"Operation failed with ATT error: 0x80"_s);
        else
            answerRequest();
    });
}

void Characteristic::pairFirst(const QByteArray& value) {
    if (agents.isEmpty()) {
        dongle.report(u"pairing without an agent"_s);
        later(attTimeout, this, [this, number = requests] {
            if (pending && number == requests) owner.vanish();
        });
        return;
    }
    agents.requestAuthorization(owner.path, [this, value, number = requests](bool granted) {
        if (!pending || number != requests) return;
        dongle.report(granted ? u"pairing granted"_s : u"pairing refused"_s);
        if (!granted) {
            answerRequest(bluez::notPermitted, u"Not paired"_s);
            return;
        }
        owner.setPaired();
        request(value);
    });
}

void Characteristic::answerRequest(const QString& error, const QString& text) {
    const auto call = std::exchange(pending, std::nullopt);
    if (!call) return;
    dongle.report(u"answer "_s + (error.isEmpty() ? u"ok"_s : error));
    if (error.isEmpty())
        tree.reply(*call);
    else
        tree.fail(*call, error, text);
}

void Characteristic::acquireWrite(const QDBusMessage& message) {
    std::array<int, 2> ends{};
    if (dongle.faults.acquire == AcquireFault::refuse) {
        tree.fail(message, bluez::notSupported, u"Operation is not supported"_s);
        return;
    }
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        tree.fail(message, bluez::failed, u"No socket"_s);
        return;
    }
    descriptor = ends[0];
    notifier = std::make_unique<Notifier>(descriptor, *this);
    notifier->setEnabled(dongle.faults.reading);
    QDBusUnixFileDescriptor theirs;
    theirs.giveFileDescriptor(ends[1]);
    dongle.report(u"descriptor acquired"_s);
    tree.reply(message, {QVariant::fromValue(theirs), QVariant::fromValue(mtu)});
    tree.set(path, bluez::characteristic, u"WriteAcquired"_s, true);
}

// A burst must not keep the bus waiting: what is left makes the notifier fire again.
bool Characteristic::Notifier::event(QEvent* event) {
    if (event->type() != QEvent::SockAct) return QSocketNotifier::event(event);
    static_cast<void>(owner.takeBatch());
    return true;
}

// One call takes all that is there: a second one, only to hear that there is no more, would cost as
// much as the first.
bool Characteristic::takeBatch() {
    std::array<std::array<char, mtu>, payloadsAtOnce> buffers;
    std::array<iovec, payloadsAtOnce> places{};
    std::array<mmsghdr, payloadsAtOnce> messages{};
    for (std::size_t i = 0; i < payloadsAtOnce; ++i) {
        places[i] = {.iov_base = buffers[i].data(), .iov_len = buffers[i].size()};
        messages[i].msg_hdr.msg_iov = &places[i];
        messages[i].msg_hdr.msg_iovlen = 1;
    }
    const auto count = ::recvmmsg(descriptor, messages.data(), payloadsAtOnce, 0, nullptr);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return false;
    for (std::size_t i = 0; i < payloadsAtOnce && static_cast<int>(i) < count; ++i) {
        const auto size = messages[i].msg_len;
        if (size == 0) break; // the end
        dongle.receive(Way::descriptor, QByteArray{buffers[i].data(), size});
        if (i + 1 == static_cast<std::size_t>(count)) return i + 1 == payloadsAtOnce;
    }
    closeDescriptor();
    return false;
}

void Characteristic::drain() {
    if (!dongle.faults.reading) return;
    for (int i = 0; i < drainedBatches && descriptor >= 0 && takeBatch(); ++i) {
    }
}

void Characteristic::closeDescriptor() {
    if (descriptor < 0) return;
    // Not now: this may be the notifier's own call.
    notifier->setEnabled(false);
    notifier.release()->deleteLater();
    ::close(std::exchange(descriptor, -1));
    dongle.report(u"descriptor closed"_s);
    tree.set(path, bluez::characteristic, u"WriteAcquired"_s, false);
}

void Characteristic::setReading(bool reading) {
    if (notifier) notifier->setEnabled(reading);
}

void Characteristic::linkLost() {
    closeDescriptor();
    answerRequest(bluez::failed, u"Operation failed with ATT error: 0x0e"_s);
}

} // namespace quenthisar::dongle
