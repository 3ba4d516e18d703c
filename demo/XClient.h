// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <xcb/xcb.h>

namespace quenthisar::demo {

/// A connection of our own to an X server: it asks for what no window is told.
class XClient {
public:
    /// Throws std::runtime_error if there is no such server.
    explicit XClient(const QString& display);

    struct Monitor {
        QString name; // as the server calls it
        QRect frame;  // pixels, origin at the top-left of the screen
        bool isPrimary = false;
        QByteArray edid; // empty where the server knows none
    };
    /// In the server's order; empty if it went away.
    QList<Monitor> monitors() const;

    /// What the server holds down right now, whoever pressed it.
    struct Held {
        QList<std::uint8_t> keys; // X key codes
        QList<int> buttons;       // 1 left, 2 middle, 3 right
        bool operator==(const Held&) const = default;
        bool isEmpty() const { return keys.isEmpty() && buttons.isEmpty(); }
    };
    /// None if the server went away, here and below.
    std::optional<Held> held() const;
    std::optional<QPoint> pointer() const;

    /// The key that types a character without AltGr; none if the keymap lacks it.
    struct Stroke {
        std::uint8_t keyCode = 0;
        bool shifted = false;
    };
    std::optional<Stroke> strokeFor(QChar character) const;
    /// The key that bears a key symbol (X11's keysyms) unshifted.
    std::optional<std::uint8_t> keyCodeOf(std::uint32_t keySymbol) const;

    /// Those on screen, not inside any other, that have the property; in their stacking order.
    QList<xcb_window_t> windowsWith(std::string_view property) const;
    /// None (0) if the server went away.
    xcb_atom_t atom(std::string_view name) const;
    /// The whole screen; a null image if it can't be taken.
    QImage picture() const;
    /// Pointer motion moves the pointer by as much, whatever its speed.
    void switchOffAcceleration() const;

    xcb_connection_t* get() const { return connection.get(); }
    xcb_window_t root() const { return screen->root; }

private:
    struct Disconnect {
        void operator()(xcb_connection_t* c) const { xcb_disconnect(c); }
    };
    std::optional<Stroke> find(std::uint32_t keySymbol) const;
    QByteArray edidOf(std::uint32_t output) const;

    std::unique_ptr<xcb_connection_t, Disconnect> connection;
    const xcb_screen_t* screen = nullptr;
};

} // namespace quenthisar::demo
