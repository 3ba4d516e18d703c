// SPDX-License-Identifier: MIT
#pragma once

#include "XClient.h"

#include <chrono>

namespace quenthisar::demo {

/// Hands on the keyboard and the mouse of an X server: all that they do, the server takes for real
/// input (XTest). Every call returns at once, after the server was told.
class Hands {
public:
    explicit Hands(const XClient& client) : client(client) {}

    void key(std::uint8_t keyCode, bool down) const;
    /// 1 left, 2 middle, 3 right, 4 wheel up, 5 wheel down.
    void button(std::uint8_t number, bool down) const;
    /// As a mouse does: relative.
    void moveBy(QPoint delta) const;

    void click(std::uint8_t number) const;
    /// Holds all of them, in this order, and lets go in the opposite one.
    void chord(const QList<std::uint8_t>& keyCodes) const;
    /// Types a text ("\n" is Return), with `pause` after each character. False, with nothing typed,
    /// if the keymap lacks one of the characters.
    bool type(const QString& text, std::chrono::milliseconds pause) const;

private:
    void fake(std::uint8_t type, std::uint8_t detail, QPoint delta = {}) const;

    const XClient& client;
};

/// Control, Option (Alt) and Command (Super) as X key codes of the left-hand keys; empty if the
/// keymap lacks one.
QList<std::uint8_t> returnChord(const XClient& client);

} // namespace quenthisar::demo
