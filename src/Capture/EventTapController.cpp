// SPDX-License-Identifier: MIT
#include "Capture/EventTapController.h"

#include <algorithm>
#include <array>
#include <limits>

namespace quenthisar {

namespace {

constexpr auto tappedTypes = std::to_array<EventType>({
    EventType::leftMouseDown,
    EventType::leftMouseUp,
    EventType::rightMouseDown,
    EventType::rightMouseUp,
    EventType::mouseMoved,
    EventType::leftMouseDragged,
    EventType::rightMouseDragged,
    EventType::keyDown,
    EventType::keyUp,
    EventType::flagsChanged,
    EventType::systemDefined,
    EventType::scrollWheel,
    EventType::otherMouseDown,
    EventType::otherMouseUp,
    EventType::otherMouseDragged,
});

constexpr std::uint64_t maskOf(const auto& types) {
    std::uint64_t mask = 0;
    for (const auto type : types) mask |= std::uint64_t{1} << static_cast<std::uint32_t>(type);
    return mask;
}
static_assert(maskOf(tappedTypes) == 0x0E405CFE);

constexpr bool isMotion(EventType type) {
    return type == EventType::mouseMoved || type == EventType::leftMouseDragged ||
           type == EventType::rightMouseDragged || type == EventType::otherMouseDragged;
}

/// A display is looked at when the pointer is this near, in points.
constexpr double nearby = 2;
/// How deep each edge's band reaches into the display, in points. The pointer itself never gets
/// past the last point of a display, hence the difference.
constexpr double leadingBand = 1, trailingBand = 2;

/// In the order in which a corner tries them.
constexpr std::array edgesByPrecedence{Edge::left, Edge::right, Edge::top, Edge::bottom};

constexpr bool isNear(const Rect& f, Point p) {
    return f.minX() - nearby <= p.x && p.x <= f.maxX() + nearby && f.minY() - nearby <= p.y &&
           p.y <= f.maxY() + nearby;
}

constexpr bool isAtEdge(const Rect& f, Edge edge, Point p) {
    switch (edge) {
    case Edge::left: return p.x <= f.minX() + leadingBand;
    case Edge::right: return p.x >= f.maxX() - trailingBand;
    case Edge::top: return p.y <= f.minY() + leadingBand;
    case Edge::bottom: return p.y >= f.maxY() - trailingBand;
    }
    return false;
}

constexpr double positionAlong(Edge edge, Point p) {
    return edge == Edge::left || edge == Edge::right ? p.y : p.x;
}

/// One unit towards the side of the target's screen that faces the crossed edge.
constexpr Report::MouseFields towardsEntrySide(Edge edge) {
    switch (edge) {
    case Edge::top: return {.dy = +1};
    case Edge::bottom: return {.dy = -1};
    case Edge::left: return {.dx = +1};
    case Edge::right: return {.dx = -1};
    }
    return {};
}

} // namespace

EventTapController::EventTapController(AppState& store, DongleManager& manager,
                                       EventTaps& eventTaps, Cursor& hostCursor)
    : appState(store), dongleManager(manager), taps(eventTaps), cursor(hostCursor) {
    // No key that is pressed waits for memory.
    pressedKeys.reserve(std::numeric_limits<std::uint8_t>::max());
}

void EventTapController::start() {
    if (tap) return;
    tap = taps.tapCreate(maskOf(tappedTypes),
                         [this](const TapEvent& event) { return handle(event); });
    if (!tap) return;
    runLoopSource = taps.addToMainRunLoop(*tap);
    tap->enable(true);
    appState.captureEnabled = true;
}

void EventTapController::stop() {
    exitRemote();
    if (tap) tap->enable(false);
    runLoopSource.reset();
    tap.reset();
    appState.captureEnabled = false;
}

void EventTapController::takeOver(Uuid dongleID) {
    if (!tap || activeDongle) return;
    const Dongle* dongle = appState.dongle(dongleID);
    if (!dongle || dongle->state != DongleConnectionState::connected) return;
    enterRemote(dongleID, std::nullopt, nullptr);
}

TapVerdict EventTapController::handle(const TapEvent& event) {
    if (event.type == EventType::tapDisabledByTimeout ||
        event.type == EventType::tapDisabledByUserInput) {
        if (tap) tap->enable(true);
        return TapVerdict::passOn;
    }
    if (activeDongle) {
        forward(event);
        return TapVerdict::swallow;
    }
    return isMotion(event.type) ? handleLocalMove(event.location) : TapVerdict::passOn;
}

TapVerdict EventTapController::handleLocalMove(Point location) {
    const auto hit = edgeHit(location);
    if (rearmAfterLeavingEdge) {
        if (!hit) rearmAfterLeavingEdge = false;
        return TapVerdict::passOn;
    }
    if (!hit) return TapVerdict::passOn;
    enterRemote(hit->dongleID, hit->edge, hit->screen);
    return TapVerdict::swallow;
}

std::optional<EventTapController::EdgeHit> EventTapController::edgeHit(Point at) const {
    for (const auto& screen : *appState.screens) {
        if (!isNear(screen.cgFrame, at)) continue;
        for (const auto edge : edgesByPrecedence) {
            if (!isAtEdge(screen.cgFrame, edge, at)) continue;
            if (const auto dongleID = connectedDongle(screen, edge, at))
                return EdgeHit{*dongleID, edge, &screen};
        }
    }
    return std::nullopt;
}

/// The connected dongle that a push against this edge at this point leads to.
std::optional<Uuid> EventTapController::connectedDongle(const ScreenInfo& screen, Edge edge,
                                                        Point at) const {
    if (!*appState.allowSharedEdges) {
        const auto exposed = ScreenLayout::exposedSegments(screen, edge, *appState.screens);
        const double position = positionAlong(edge, at);
        if (std::ranges::none_of(exposed, [=](const Segment& s) { return s.contains(position); }))
            return std::nullopt;
    }
    const auto id = appState.dongleID(screen.uuid, edge);
    const Dongle* dongle = id ? appState.dongle(*id) : nullptr;
    const bool connected = dongle && dongle->state == DongleConnectionState::connected;
    return connected ? id : std::nullopt;
}

void EventTapController::enterRemote(const Uuid& dongleID, std::optional<Edge> edge,
                                     const ScreenInfo* screen) {
    activeDongle = dongleID;
    activeEdge = edge;
    clearHeldInput();
    sensAccumX = 0;
    sensAccumY = 0;
    cursor.associateMouseAndMouseCursorPosition(false);
    cursor.displayHideCursor();
    slamReturnEnabled = edge && *appState.cornerSlam;
    if (slamReturnEnabled) {
        const auto unit = towardsEntrySide(*edge);
        dongleManager.send(
            Report::mouse({.dx = unit.dx * slamMagnitude, .dy = unit.dy * slamMagnitude}),
            dongleID);
    }
    // Before anything is published: an observer may refresh the displays.
    auto screenUUID = screen ? std::optional{screen->uuid} : std::nullopt;
    appState.activeMode = appState.displayName(dongleID);
    appState.takeover = Takeover{dongleID, edge, std::move(screenUUID)};
}

void EventTapController::exitRemote() {
    if (!activeDongle) return;
    const Uuid id = *activeDongle;
    dongleManager.send(Report::allKeysUp(), id);
    dongleManager.send(Report::mouse({}), id);
    cursor.associateMouseAndMouseCursorPosition(true);
    cursor.displayShowCursor();
    rearmAfterLeavingEdge = true;
    activeDongle.reset();
    activeEdge.reset();
    appState.takeover = std::nullopt;
    clearHeldInput();
    slamReturnEnabled = false;
    appState.activeMode = "Local";
}

/// Of what is held and of the slam return, nothing outlives an entry or an exit.
void EventTapController::clearHeldInput() {
    pressedKeys.clear();
    modifiers = 0;
    buttons = 0;
    slamOffset = 0;
    returnArmed = false;
}

} // namespace quenthisar
