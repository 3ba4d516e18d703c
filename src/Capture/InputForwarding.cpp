// SPDX-License-Identifier: MIT
#include "Capture/EventTapController.h"
#include "Capture/KeycodeMap.h"

#include <algorithm>
#include <cmath>

namespace quenthisar {

namespace {

constexpr std::uint8_t leftButton = 0x01, rightButton = 0x02, otherButton = 0x04;

constexpr std::uint64_t returnChord =
    EventFlags::control | EventFlags::option | EventFlags::command;

/// Takes the whole units out of `accumulator`, towards zero; the rest keeps its sign. A factor that
/// no pointer could have (the settings file holds what it likes) saturates, or moves nothing.
std::int64_t takeWholeUnits(double& accumulator) {
    if (!std::isfinite(accumulator)) {
        accumulator = 0;
        return 0;
    }
    const double whole = std::trunc(accumulator);
    accumulator -= whole;
    constexpr double limit = 0x1p62;
    return static_cast<std::int64_t>(std::clamp(whole, -limit, limit));
}

} // namespace

void EventTapController::forward(const TapEvent& event) {
    if (!activeDongle) return;
    switch (event.type) {
    case EventType::leftMouseDown: return setButton(leftButton, true);
    case EventType::leftMouseUp: return setButton(leftButton, false);
    case EventType::rightMouseDown: return setButton(rightButton, true);
    case EventType::rightMouseUp: return setButton(rightButton, false);
    case EventType::otherMouseDown: return setButton(otherButton, true);
    case EventType::otherMouseUp: return setButton(otherButton, false);
    case EventType::mouseMoved:
    case EventType::leftMouseDragged:
    case EventType::rightMouseDragged:
    case EventType::otherMouseDragged: return forwardMotion(event);
    case EventType::keyDown: return setKey(event, true);
    case EventType::keyUp: return setKey(event, false);
    case EventType::flagsChanged: return forwardFlags(event);
    case EventType::systemDefined: return forwardMediaKey(event, *activeDongle);
    case EventType::scrollWheel:
        return dongleManager.send(Report::mouse({.buttons = buttons, .wheel = event.scrollDelta}),
                                  *activeDongle);
    case EventType::tapDisabledByTimeout:
    case EventType::tapDisabledByUserInput: return;
    }
}

void EventTapController::setButton(std::uint8_t bit, bool down) {
    buttons = static_cast<std::uint8_t>(down ? buttons | bit : buttons & ~bit);
    dongleManager.send(Report::mouse({.buttons = buttons}), *activeDongle);
}

void EventTapController::forwardMotion(const TapEvent& event) {
    auto dx = event.deltaX, dy = event.deltaY;
    const auto factor = appState.sensitivities->find(*activeDongle);
    if (factor != appState.sensitivities->end() && factor->second != 1.0) {
        sensAccumX += factor->second * static_cast<double>(dx);
        sensAccumY += factor->second * static_cast<double>(dy);
        dx = takeWholeUnits(sensAccumX);
        dy = takeWholeUnits(sensAccumY);
    }
    if (slamReturnEnabled && slamReturnTriggered(dx, dy)) return exitRemote();
    dongleManager.send(Report::mouse({.buttons = buttons, .dx = dx, .dy = dy}), *activeDongle);
}

bool EventTapController::slamReturnTriggered(std::int64_t dx, std::int64_t dy) {
    if (!activeEdge) return false;
    // Away from the entry side is negative for left and top.
    const bool horizontal = *activeEdge == Edge::left || *activeEdge == Edge::right;
    const double away = *activeEdge == Edge::left || *activeEdge == Edge::top ? -1 : +1;
    slamOffset += static_cast<double>(horizontal ? dx : dy);
    if (away * slamOffset >= armThreshold) returnArmed = true;
    return returnArmed && away * slamOffset <= 0;
}

void EventTapController::setKey(const TapEvent& event, bool down) {
    if (const auto usage = KeycodeMap::usage(static_cast<std::uint16_t>(event.keyCode))) {
        const bool held = std::ranges::find(pressedKeys, *usage) != pressedKeys.end();
        if (down && !held) pressedKeys.push_back(*usage);
        if (!down) std::erase(pressedKeys, *usage);
    }
    sendKeys(event.flags);
}

void EventTapController::forwardFlags(const TapEvent& event) {
    if ((event.flags & returnChord) == returnChord) return exitRemote();
    sendKeys(event.flags);
}

void EventTapController::sendKeys(std::uint64_t flags) {
    modifiers = KeycodeMap::modifierByte(flags);
    dongleManager.send(Report::keyboard(modifiers, pressedKeys), *activeDongle);
}

void EventTapController::forwardMediaKey(const TapEvent& event, const Uuid& id) {
    if (event.subtype != auxiliaryControlButtons) return;
    constexpr std::int64_t pressed = 0x0A;
    const auto usage = KeycodeMap::consumerUsage(event.data1 >> 16 & 0xFFFF);
    if (!usage) return;
    const bool down = (event.data1 >> 8 & 0xFF) == pressed;
    dongleManager.send(Report::consumer(down ? *usage : 0), id);
}

} // namespace quenthisar
