// SPDX-License-Identifier: MIT
#include "Characteristic.h"

#include "Bluez.h"
#include "Later.h"

#include <QDBusArgument>
#include <QDBusUnixFileDescriptor>

#include <array>
#include <chrono>
#include <fcntl.h>
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

std::span<const std::uint8_t> bytesOf(const QByteArray& value) {
    return {reinterpret_cast<const std::uint8_t*>(value.constData()),
            static_cast<std::size_t>(value.size())};
}

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
    else if (reader)
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
        dongle.receive(Way::command, bytesOf(value));
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
    dongle.receive(Way::request, bytesOf(value));
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
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        tree.fail(message, bluez::failed, u"No socket"_s);
        return;
    }
    ::fcntl(ends[1], F_SETFL, O_NONBLOCK); // as the daemon hands it out
    reader = std::make_unique<PayloadReader>(
        ends[0],
        PayloadReader::Handlers{
            .take = [this](auto payload) { dongle.receive(Way::descriptor, payload); },
            .ended = [this, number = ++descriptors] { closeLater(number); }},
        dongle.faults.reading);
    QDBusUnixFileDescriptor theirs;
    theirs.giveFileDescriptor(ends[1]);
    dongle.report(u"descriptor acquired"_s);
    tree.reply(message, {QVariant::fromValue(theirs), QVariant::fromValue(mtu)});
    tree.set(path, bluez::characteristic, u"WriteAcquired"_s, true);
}

void Characteristic::drain() {
    if (reader) reader->drain();
}

void Characteristic::closeDescriptor() {
    if (!reader) return;
    reader.reset();
    dongle.report(u"descriptor closed"_s);
    tree.set(path, bluez::characteristic, u"WriteAcquired"_s, false);
}

// Called on the reader's thread, which the main loop waits for when it closes.
void Characteristic::closeLater(int number) {
    QMetaObject::invokeMethod(
        this,
        [this, number] {
            if (number == descriptors) closeDescriptor();
        },
        Qt::QueuedConnection);
}

void Characteristic::setReading(bool reading) {
    if (reader) reader->setReading(reading);
}

void Characteristic::linkLost() {
    closeDescriptor();
    answerRequest(bluez::failed, u"Operation failed with ATT error: 0x0e"_s);
}

} // namespace quenthisar::dongle
