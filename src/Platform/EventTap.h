// SPDX-License-Identifier: MIT
#pragma once

#include "Support/Geometry.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace quenthisar {

enum class EventType : std::uint32_t {
    leftMouseDown = 1,
    leftMouseUp = 2,
    rightMouseDown = 3,
    rightMouseUp = 4,
    mouseMoved = 5,
    leftMouseDragged = 6,
    rightMouseDragged = 7,
    keyDown = 10,
    keyUp = 11,
    flagsChanged = 12,
    systemDefined = 14, // media keys
    scrollWheel = 22,
    otherMouseDown = 25,
    otherMouseUp = 26,
    otherMouseDragged = 27,
    tapDisabledByTimeout = 0xFFFFFFFE,
    tapDisabledByUserInput = 0xFFFFFFFF,
};

/// The modifier bits of `TapEvent::flags`. A set bit means that the modifier is on after the event.
namespace EventFlags {
inline constexpr std::uint64_t alphaShift = 0x10000; // Caps Lock
inline constexpr std::uint64_t shift = 0x20000;
inline constexpr std::uint64_t control = 0x40000;
inline constexpr std::uint64_t option = 0x80000;
inline constexpr std::uint64_t command = 0x100000;
} // namespace EventFlags

/// The subtype of a system-defined event that carries a media key.
inline constexpr std::int16_t auxiliaryControlButtons = 8;

/// One input event. Which fields carry something depends on the type; the others are zero.
struct TapEvent {
    EventType type = EventType::mouseMoved;
    Point location{};             // moves and drags: global display coordinates
    std::uint64_t flags = 0;      // keys and modifier changes
    std::int64_t keyCode = 0;     // keys: the host's virtual key code
    std::int64_t deltaX = 0;      // moves and drags, to the right positive
    std::int64_t deltaY = 0;      // moves and drags, downwards positive
    std::int64_t scrollDelta = 0; // scroll wheel: lines, upwards positive
    std::int16_t subtype = 0;     // system-defined
    std::int64_t data1 = 0;       // system-defined: key type in bits 16 to 31, state in 8 to 15
};

/// What becomes of a tapped event. A tap that cannot filter delivers the same events and swallows
/// them exactly while the cursor is frozen; it then does not look at the answer.
enum class TapVerdict { passOn, swallow };

using TapCallback = std::function<TapVerdict(const TapEvent&)>;

/// A tap on the host's input. Destroying it ends it.
class EventTap {
public:
    virtual ~EventTap() = default;

    virtual void enable(bool on) = 0;
};

/// Delivers the events of a tap on the main run loop as long as it lives. Goes before its tap.
class RunLoopSource {
public:
    virtual ~RunLoopSource() = default;
};

/// The host's event services. Main thread.
class EventTaps {
public:
    virtual ~EventTaps() = default;

    /// A disabled tap for the event types whose bits are set in `mask`, or null when the system
    /// refuses it. `callback` runs on the main thread, from the tap's run-loop source only, never
    /// inside a call of this interface; it may disable, stop or destroy the tap.
    virtual std::unique_ptr<EventTap> tapCreate(std::uint64_t mask, TapCallback callback) = 0;

    virtual std::unique_ptr<RunLoopSource> addToMainRunLoop(EventTap& tap) = 0;
};

} // namespace quenthisar
