// SPDX-License-Identifier: MIT
#include "Returns.h"

#include "demo/Interrupt.h"

#include <cstdlib>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>

namespace quenthisar::bench {

namespace {

using namespace std::chrono_literals;

constexpr auto limit = 20s;
constexpr auto returnLimit = 2s;
constexpr auto step = 250us; // between two moves: as exact as a figure can be
constexpr auto keyPause = 20ms;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

/// Any client of the host, which is told of motion and keys that nobody else takes.
class Onlooker {
public:
    explicit Onlooker(const QString& display) : client(display) {
        const std::uint32_t mask = XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_KEY_PRESS;
        xcb_change_window_attributes(client.get(), client.root(), XCB_CW_EVENT_MASK, &mask);
        forget();
    }

    void forget() {
        static_cast<void>(client.pointer()); // all that came before it has arrived
        look();
        hasMotion = hasKey = false;
    }

    /// Whether motion and a key have come.
    bool look() {
        while (const std::unique_ptr<xcb_generic_event_t, Free> event{
            xcb_poll_for_event(client.get())}) {
            const auto type = event->response_type & 0x7F;
            hasMotion = hasMotion || type == XCB_MOTION_NOTIFY;
            hasKey = hasKey || type == XCB_KEY_PRESS;
        }
        return hasMotion && hasKey;
    }

private:
    const demo::XClient client;
    bool hasMotion = false, hasKey = false;
};

std::uint8_t anyKey(const demo::XClient& client) {
    const auto stroke = client.strokeFor(u'a');
    if (!stroke) throw std::runtime_error("the keymap lacks a letter");
    return stroke->keyCode;
}

} // namespace

std::vector<nanoseconds> measureReturns(const Host& host, demo::Crossing& crossing, int times) {
    const auto& mouse = host.devices().mouse;
    const auto& keyboard = host.devices().keyboard;
    const auto chord = demo::returnChord(host.client());
    const auto letter = anyKey(host.client());
    Onlooker onlooker{host.display()};

    const auto once = [&]() -> nanoseconds {
        for (const auto key : chord) {
            if (key == chord.back()) break;
            keyboard.key(key, true);
            std::this_thread::sleep_for(keyPause);
        }
        onlooker.forget();
        const auto start = Clock::now();
        keyboard.key(chord.back(), true);
        for (int sign = 1; !onlooker.look(); sign = -sign) {
            if (Clock::now() - start > returnLimit)
                throw std::runtime_error("the return chord does not return");
            mouse.moveBy(0, sign);
            keyboard.tap(letter);
            std::this_thread::sleep_for(step);
        }
        const auto result = Clock::now() - start;
        for (const auto key : chord) keyboard.key(key, false);
        std::this_thread::sleep_for(keyPause);
        return result;
    };
    std::vector<nanoseconds> result;
    for (int i = 0; i < times; ++i) {
        demo::throwIfInterrupted();
        if (!crossing.enter(limit))
            throw std::runtime_error("crossing the edge does not take over");
        result.push_back(once());
        if (!crossing.hostPointerMoves(limit))
            throw std::runtime_error("the return chord does not return");
    }
    return result;
}

} // namespace quenthisar::bench
