// SPDX-License-Identifier: MIT
#include "InputTestDevice.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>
#include <xorg/xf86-input-inputtest-protocol.h>

namespace quenthisar::demo {

namespace {

constexpr timeval answerLimit{.tv_sec = 20, .tv_usec = 0};

void set(xf86ITValuatorData& data, unsigned axis, double value) {
    data.mask[0] = static_cast<std::uint8_t>(data.mask[0] | 1U << axis);
    data.valuators[axis] = value;
}

template <class Message>
Message make(xf86ITEventType type) {
    Message message{};
    message.header = {sizeof message, type};
    return message;
}

} // namespace

InputTestDevice::InputTestDevice(const QString& socketPath, Return whenCallsReturn)
    : socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)), returns(whenCallsReturn) {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    const auto path = socketPath.toLocal8Bit();
    std::strncpy(address.sun_path, path.constData(), sizeof address.sun_path - 1);
    ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &answerLimit, sizeof answerLimit);
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("no device at " + path.toStdString());
    auto hello = make<xf86ITEventClientVersion>(XF86IT_EVENT_CLIENT_VERSION);
    hello.major = XF86IT_PROTOCOL_VERSION_MAJOR;
    hello.minor = XF86IT_PROTOCOL_VERSION_MINOR;
    send(hello);
    xf86ITResponseServerVersion version;
    receive(&version, sizeof version);
}

InputTestDevice::~InputTestDevice() {
    ::close(socket);
}

void InputTestDevice::moveManyTimes(int times, double dx, double dy) const {
    auto motion = make<xf86ITEventMotion>(XF86IT_EVENT_MOTION);
    set(motion.valuators, 0, dx);
    set(motion.valuators, 1, dy);
    for (int i = 0; i < times; ++i) send(motion);
    sync();
}

void InputTestDevice::moveTo(double x, double y) const {
    auto motion = make<xf86ITEventMotion>(XF86IT_EVENT_MOTION);
    motion.is_absolute = 1;
    set(motion.valuators, 0, x);
    set(motion.valuators, 1, y);
    send(motion);
    sync();
}

void InputTestDevice::scroll(double vertical, double horizontal) const {
    auto motion = make<xf86ITEventMotion>(XF86IT_EVENT_MOTION);
    if (horizontal != 0) set(motion.valuators, 2, horizontal);
    if (vertical != 0) set(motion.valuators, 3, vertical);
    send(motion);
    sync();
}

void InputTestDevice::button(int number, bool isDown) const {
    auto button = make<xf86ITEventButton>(XF86IT_EVENT_BUTTON);
    button.button = number;
    button.is_press = isDown;
    send(button);
    sync();
}

void InputTestDevice::key(std::uint8_t code, bool isDown) const {
    auto key = make<xf86ITEventKey>(XF86IT_EVENT_KEY);
    key.key_code = code;
    key.is_press = isDown;
    send(key);
    sync();
}

void InputTestDevice::sync() const {
    if (returns == Return::atOnce) return;
    send(make<xf86ITEventWaitForSync>(XF86IT_EVENT_WAIT_FOR_SYNC));
    xf86ITResponseSyncFinished answer;
    receive(&answer, sizeof answer);
}

template <class Message>
void InputTestDevice::send(Message message) const {
    if (::send(socket, &message, sizeof message, MSG_NOSIGNAL) != sizeof message)
        throw std::runtime_error("the device is gone");
}

void InputTestDevice::receive(void* answer, std::size_t size) const {
    if (::recv(socket, answer, size, MSG_WAITALL) != static_cast<ssize_t>(size))
        throw std::runtime_error("the device doesn't answer");
}

} // namespace quenthisar::demo
