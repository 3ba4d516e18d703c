// SPDX-License-Identifier: MIT
#include "Linux/DeliveredInput.h"

namespace quenthisar {

namespace {

// As in `TapEvent::data1`.
constexpr std::int64_t mediaKeyDown = 0x0A00, mediaKeyUp = 0x0B00, mediaKeyState = 0xFF00;

void set(std::vector<std::int64_t>& held, std::int64_t key, bool isDown) {
    std::erase(held, key);
    if (isDown) held.push_back(key);
}

} // namespace

void DeliveredInput::begin(std::uint64_t flags) {
    *this = {};
    modifiers = flags;
}

void DeliveredInput::note(const TapEvent& event) {
    using enum EventType;
    switch (event.type) {
    case leftMouseDown:
    case leftMouseUp: left = event.type == leftMouseDown; break;
    case rightMouseDown:
    case rightMouseUp: right = event.type == rightMouseDown; break;
    case otherMouseDown:
    case otherMouseUp: other = event.type == otherMouseDown; break;
    case keyDown:
    case keyUp: set(keys, event.keyCode, event.type == keyDown); break;
    case flagsChanged: modifiers = event.flags; break;
    case systemDefined:
        set(mediaKeys, event.data1 >> 16, (event.data1 & mediaKeyState) == mediaKeyDown);
        break;
    case mouseMoved:
    case leftMouseDragged:
    case rightMouseDragged:
    case otherMouseDragged:
    case scrollWheel:
    case tapDisabledByTimeout:
    case tapDisabledByUserInput: break;
    }
}

std::vector<TapEvent> DeliveredInput::releases(std::uint64_t flags) const {
    std::vector<TapEvent> events;
    for (const auto key : keys)
        events.push_back({.type = EventType::keyUp, .flags = flags, .keyCode = key});
    const auto media = mediaReleases(flags);
    events.insert(events.end(), media.begin(), media.end());
    if (left) events.push_back({.type = EventType::leftMouseUp});
    if (right) events.push_back({.type = EventType::rightMouseUp});
    if (other) events.push_back({.type = EventType::otherMouseUp});
    if (modifiers != flags) events.push_back({.type = EventType::flagsChanged, .flags = flags});
    return events;
}

std::vector<TapEvent> DeliveredInput::mediaReleases(std::uint64_t flags) const {
    std::vector<TapEvent> events;
    for (const auto key : mediaKeys)
        events.push_back({.type = EventType::systemDefined,
                          .flags = flags,
                          .subtype = auxiliaryControlButtons,
                          .data1 = key << 16 | mediaKeyUp});
    return events;
}

} // namespace quenthisar
