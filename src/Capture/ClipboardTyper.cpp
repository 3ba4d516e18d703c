// SPDX-License-Identifier: MIT
#include "Capture/ClipboardTyper.h"

#include "Capture/KeycodeMap.h"
#include "Protocol/Report.h"

#include <array>
#include <utility>

namespace quenthisar {

namespace {

constexpr std::size_t longestText = 0x100000;
constexpr Seconds keyDownDelay{0.014}, interKeyDelay{0.06};

} // namespace

ClipboardTyper::ClipboardTyper(DongleManager& manager, Pasteboard& board, SerialQueue& typingQueue,
                               MainQueue& main)
    : dongleManager(manager), pasteboard(board), queue(typingQueue), mainQueue(main) {}

void ClipboardTyper::typeClipboard(Uuid to) {
    if (typing) return;
    const auto text = pasteboard.string();
    if (!text) return;
    auto bytes = std::make_shared<const Bytes>(KeycodeMap::asciiBytes(*text, longestText));
    if (bytes->empty()) return;
    typing = true;
    queue.async([weak = weak_from_this(), bytes = std::move(bytes), to] {
        if (const auto self = weak.lock()) self->run(*bytes, to);
    });
}

void ClipboardTyper::run(const Bytes& bytes, const Uuid& id) {
    for (const auto byte : bytes) {
        const auto keypress = KeycodeMap::usbKeypress(byte);
        if (!keypress) continue;
        const std::array<std::uint8_t, 1> key{keypress->keycode};
        // Press and release in one action: whatever ends the run, no key stays down.
        mainQueue.async(
            [self = shared_from_this(), id, down = Report::keyboard(keypress->modifier, key)] {
                self->dongleManager.send(down, id);
                self->dongleManager.send(Report::allKeysUp(), id);
            });
        if (!queue.sleepForTimeInterval(keyDownDelay + interKeyDelay)) break;
    }
    typing = false;
}

} // namespace quenthisar
