// SPDX-License-Identifier: MIT
#pragma once

#include "AppState.h"
#include "BLE/DongleManager.h"
#include "Platform/Cursor.h"
#include "Platform/EventTap.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace quenthisar {

/// Owns the one event tap and decides, event by event, whether the host keeps its input (local
/// mode) or a target gets it (remote mode). Main thread.
class EventTapController {
public:
    /// Creates no tap. All four must outlive the controller.
    EventTapController(AppState& appState, DongleManager& dongleManager, EventTaps& taps,
                       Cursor& cursor);
    EventTapController(const EventTapController&) = delete;
    EventTapController& operator=(const EventTapController&) = delete;

    /// Starts capture. Nothing happens if it runs, or if the system refuses the tap.
    void start();

    /// Ends a takeover, then capture.
    void stop();

    /// Takes over without an edge. Nothing happens unless capture runs, no takeover does, and the
    /// dongle is connected.
    void takeOver(Uuid dongleID);

private:
    struct EdgeHit {
        Uuid dongleID;
        Edge edge;
        const ScreenInfo* screen; // in `AppState::screens`
    };

    TapVerdict handle(const TapEvent& event);
    TapVerdict handleLocalMove(Point location);
    std::optional<EdgeHit> edgeHit(Point at) const;
    std::optional<Uuid> connectedDongle(const ScreenInfo& screen, Edge edge, Point at) const;
    void enterRemote(const Uuid& dongleID, std::optional<Edge> edge, const ScreenInfo* screen);
    void exitRemote();
    void clearHeldInput();

    // Forwarding: the events of remote mode as reports.
    void forward(const TapEvent& event);
    void forwardMotion(const TapEvent& event);
    void forwardFlags(const TapEvent& event);
    void forwardMediaKey(const TapEvent& event, const Uuid& id);
    void setButton(std::uint8_t bit, bool down);
    void setKey(const TapEvent& event, bool down);
    void sendKeys(std::uint64_t flags);
    bool slamReturnTriggered(std::int64_t dx, std::int64_t dy);

    static constexpr std::int64_t slamMagnitude = 7680; // in the target's relative mouse units
    static constexpr double armThreshold = 40.0;        // travel that arms the slam return

    AppState& appState;
    DongleManager& dongleManager;
    EventTaps& taps;
    Cursor& cursor;
    std::unique_ptr<EventTap> tap; // present exactly while capture runs
    std::unique_ptr<RunLoopSource> runLoopSource;
    std::optional<Uuid> activeDongle;      // present exactly in remote mode
    std::optional<Edge> activeEdge;        // none for a takeover without an edge
    bool rearmAfterLeavingEdge = false;    // while set, edge hits are ignored
    std::vector<std::uint8_t> pressedKeys; // HID usages without doubles, in order of pressing
    std::uint8_t modifiers = 0;            // of the last keyboard report
    std::uint8_t buttons = 0;              // as in a mouse report
    double sensAccumX = 0, sensAccumY = 0; // what the speed factor left over, per axis
    bool slamReturnEnabled = false;
    double slamOffset = 0;    // motion along the entry edge's axis since entry
    bool returnArmed = false; // the pointer has been far enough away from the entry side
};

} // namespace quenthisar
