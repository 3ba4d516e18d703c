// SPDX-License-Identifier: MIT
#include "Hands.h"

#include <QThread>

#include <algorithm>
#include <xcb/xtest.h>

namespace quenthisar::demo {

namespace {

constexpr std::uint32_t leftShift = 0xFFE1, leftControl = 0xFFE3, leftAlt = 0xFFE9,
                        leftSuper = 0xFFEB;

} // namespace

void Hands::fake(std::uint8_t type, std::uint8_t detail, QPoint delta) const {
    xcb_test_fake_input(client.get(), type, detail, XCB_CURRENT_TIME, XCB_NONE,
                        static_cast<std::int16_t>(delta.x()), static_cast<std::int16_t>(delta.y()),
                        0);
    xcb_flush(client.get());
}

void Hands::key(std::uint8_t keyCode, bool down) const {
    fake(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, keyCode);
}

void Hands::button(std::uint8_t number, bool down) const {
    fake(down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, number);
}

void Hands::moveBy(QPoint delta) const {
    constexpr std::uint8_t relative = 1;
    fake(XCB_MOTION_NOTIFY, relative, delta);
}

void Hands::click(std::uint8_t number) const {
    button(number, true);
    button(number, false);
}

void Hands::chord(const QList<std::uint8_t>& keyCodes) const {
    for (const auto code : keyCodes) key(code, true);
    std::for_each(keyCodes.rbegin(), keyCodes.rend(), [this](auto code) { key(code, false); });
}

bool Hands::type(const QString& text, std::chrono::milliseconds pause) const {
    const auto shift = client.keyCodeOf(leftShift);
    QList<XClient::Stroke> strokes;
    for (const auto character : text) {
        const auto stroke = client.strokeFor(character);
        if (!stroke || (stroke->shifted && !shift)) return false;
        strokes += *stroke;
    }
    for (const auto& stroke : strokes) {
        if (stroke.shifted) key(*shift, true);
        key(stroke.keyCode, true);
        key(stroke.keyCode, false);
        if (stroke.shifted) key(*shift, false);
        QThread::msleep(static_cast<unsigned long>(pause.count()));
    }
    return true;
}

QList<std::uint8_t> returnChord(const XClient& client) {
    QList<std::uint8_t> result;
    for (const auto symbol : {leftControl, leftAlt, leftSuper}) {
        const auto code = client.keyCodeOf(symbol);
        if (!code) return {};
        result += *code;
    }
    return result;
}

} // namespace quenthisar::demo
