// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>

namespace quenthisar::test {

/// A hand at a device of Xorg's `inputtest` driver: what it does, a real device would have done.
/// All calls return when the server has processed it. Throws std::runtime_error if it doesn't.
class InputTestDevice {
public:
    explicit InputTestDevice(const QString& socketPath);
    ~InputTestDevice();
    InputTestDevice(const InputTestDevice&) = delete;
    InputTestDevice& operator=(const InputTestDevice&) = delete;

    void moveBy(double dx, double dy) const { moveManyTimes(1, dx, dy); }
    /// As fast as the server takes it.
    void moveManyTimes(int times, double dx, double dy) const;
    /// Of a device with positions: 0 to 65535 on each axis.
    void moveTo(double x, double y) const;
    /// 120 is one line; downwards and to the right positive.
    void scroll(double vertical, double horizontal = 0) const;
    void button(int number, bool isDown) const;
    void click(int number) const { button(number, true), button(number, false); }
    void key(std::uint8_t code, bool isDown) const;
    void tap(std::uint8_t code) const { key(code, true), key(code, false); }

private:
    void sync() const;
    template <class Message>
    void send(Message message) const;
    void receive(void* answer, std::size_t size) const;

    int socket = -1;
};

} // namespace quenthisar::test
