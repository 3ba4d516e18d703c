// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>

namespace quenthisar::demo {

/// A hand at a device of Xorg's `inputtest` driver: what it does, a real device would have done.
/// Throws std::runtime_error if the server doesn't take it.
class InputTestDevice {
public:
    /// When its calls return: as soon as the server was told, or not before it has processed all.
    enum class Return { atOnce, whenProcessed };

    explicit InputTestDevice(const QString& socketPath, Return returns = Return::whenProcessed);
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
    Return returns;
};

} // namespace quenthisar::demo
