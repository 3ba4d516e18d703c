// SPDX-License-Identifier: MIT
// Payloads as the dongle's end decodes them, and as the host's end makes them.
#include "dongle/Payload.h"
#include "Protocol/Report.h"
#include "dongle/HidDevice.h"

#include "Target.h"

#include <algorithm>
#include <set>
#include <vector>

namespace quenthisar {

namespace {

using fuzz::require;

/// A computer that complains of what no keyboard or mouse does.
class Computer final : public dongle::InputSink {
public:
    void key(std::uint8_t code, bool down) override { change(keys, code, down); }
    void button(std::uint8_t number, bool down) override { change(buttons, number, down); }
    void move(int dx, int dy) override {
        require(std::max(std::abs(dx), std::abs(dy)) <= 0x8000, "moves too far");
    }
    void flush() override {}

    bool isIdle() const { return keys.empty() && buttons.empty(); }

private:
    static void change(std::set<std::uint8_t>& held, std::uint8_t which, bool down) {
        require(down ? held.insert(which).second : held.erase(which) == 1,
                "presses what is down, or releases what is up");
    }

    std::set<std::uint8_t> keys, buttons;
};

std::int64_t saturated(std::int64_t value) {
    return std::clamp<std::int64_t>(value, -0x8000, 0x7FFF);
}

std::int64_t int32(fuzz::Reader& reader) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value = value << 8 | reader.byte();
    return static_cast<std::int32_t>(value);
}

/// Whatever the host's end makes is understood as it is meant.
void checkHost(fuzz::Reader& reader) {
    const auto modifiers = static_cast<std::uint8_t>(reader.byte() & 0x0F);
    const auto keys = reader.bytes(reader.number(9));
    const auto keyboard = dongle::decode(Report::keyboard(modifiers, keys));
    const auto* held = std::get_if<dongle::KeyboardReport>(&keyboard);
    require(held && held->modifiers == modifiers, "other modifiers than were sent");
    require(std::equal(held->usages.begin(), held->usages.begin() + std::min(std::ssize(keys), 6L),
                       keys.begin()),
            "other keys than were sent");

    const Report::MouseFields fields{.buttons = static_cast<std::uint8_t>(reader.byte() & 0x07),
                                     .dx = int32(reader),
                                     .dy = int32(reader),
                                     .wheel = int32(reader)};
    const auto sent = Report::mouse(fields);
    const auto mouse = dongle::decode(sent);
    const auto* move = std::get_if<dongle::MouseReport>(&mouse);
    require(move && move->buttons == fields.buttons && move->dx == saturated(fields.dx) &&
                move->dy == saturated(fields.dy) && move->wheel == saturated(fields.wheel),
            "another move than was sent");
    require(Report::isPureMotion(sent, sent) ==
                (move->wheel == 0 && std::abs(move->dx) < 7680 && std::abs(move->dy) < 7680),
            "is wrong about pure motion");
}

} // namespace

void fuzz::run(Bytes input) {
    Reader reader(input);
    Computer computer;
    dongle::HidDevice device(computer);
    checkHost(reader);
    while (!reader.atEnd()) {
        const auto report = dongle::decode(reader.bytes(reader.byte() & 0x1F));
        const auto line = dongle::describe(report);
        require(!line.empty() && line.size() < 200 && line.find('\n') == std::string::npos,
                "no line for a report");
        device.apply(report);
    }
    device.releaseAll();
    require(computer.isIdle(), "something stays down");
}

} // namespace quenthisar
