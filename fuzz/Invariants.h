// SPDX-License-Identifier: MIT
#pragma once

#include "support/Steps.h"

#include "HidHost.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quenthisar {

/// What holds whatever happens.
namespace Invariant {
inline constexpr std::string_view
    nothingIsHeldAfterAReturn = "nothing is held on a target that returned",
    hostSeesNothingOfATakeover = "the host sees nothing of a takeover",
    hostSeesEverythingElse = "the host sees all but the crossing move",
    payloadsBelongToSomething = "no payload outside takeovers and chords",
    payloadsAreValid = "payloads are valid", payloadsNeedAReadyLink = "payloads need a ready link",
    oneProbePerLink = "one probe per link, first of all",
    oneEventIsOnePayload = "one event is one payload, a return two",
    motionAddsUp = "motion adds up", slamOnlyThroughAnEdge = "a slam only through an edge",
    takeoversNeedAConnectedDongle = "takeovers need a connected dongle",
    edgesAreReArmedFirst = "an edge is left once before it counts again",
    onlyTheUserReturns = "the chord, a push back or stopping end a takeover",
    modeFollowsTakeover = "the mode follows the takeover",
    cursorFollowsTakeover = "the cursor follows the takeover",
    captureFollowsTap = "capture follows the tap",
    aProfileIsActive = "one of the profiles is active",
    donglesAreOnlyAppended = "dongles are only appended", settingsAreStored = "settings are stored",
    panelsFollowTakeovers = "a panel is there for 2.6 s of a takeover";
} // namespace Invariant

struct Violation {
    std::string_view invariant;
    std::string detail;
};

/// Watches one world from its beginning. Keeps the first violation.
class Invariants final : public Witness {
public:
    /// The steps go through here.
    void perform(const Step& step, World& world);
    /// What is too slow to be compared after each step.
    void compareAllThatIsStored();

    std::optional<Violation> violation;

    /// What there was to watch: takeovers, their ends, payloads and more.
    enum Sight { crossing, otherTakeover, chord, push, stop, payload, typed, profileChord, panel };
    using Sights = std::array<std::size_t, 9>;
    Sights seen{};

private:
    using Time = VirtualClock::Nanoseconds;

    /// A payload that the clock, the user's chord or the clipboard sends, not the tap.
    struct Announced {
        Time when;
        std::size_t dongle;
        Payload payload;
        bool isChordRelease = false;
        bool isTyped = false;
    };

    /// Of the motion through one takeover since something last made its sum inexact.
    struct Axis {
        double expected = 0;
        std::int64_t arrived = 0;
        /// None at a factor of one, else one unit, and another where a remainder was carried in.
        double tolerance = 0;
    };

    void willPost(const TapEvent& event) override;
    void posted(const TapEvent& event, TapVerdict verdict) override;
    void wrote(const Write& write) override;
    void takeoverWillBe(const std::optional<Takeover>& next) override;
    void profileWillBe(const Uuid& id) override;
    void linkLost(const Uuid& id) override;

    void announce(const Step& step);
    void announceChord(const std::string& text, std::size_t dongle);
    void announceTyping();
    std::optional<std::size_t> clipboardTarget() const;
    bool wasAnnounced(std::size_t dongle, const Payload& payload);
    void checkMotion(const TapEvent& event, std::size_t dongle);
    void checkState();
    void checkPanels();
    void require(bool holds, std::string_view invariant, const std::string& detail);
    double factor(std::size_t dongle) const;
    bool isReady(std::size_t dongle) const;

    World* world = nullptr;
    std::array<HidHost, World::dongleCount> hosts;
    std::array<bool, World::dongleCount> probed{}; // on this link
    std::vector<Announced> announced;
    std::vector<Uuid> listed;

    // While an event is posted.
    bool posting = false;
    TapEvent event;
    std::optional<Takeover> before;
    double factorBefore = 1;
    std::array<std::int64_t, 2> positionBefore{};
    int payloads = 0;
    std::optional<std::size_t> slammed; // sent before its takeover is published

    std::array<Axis, 2> axes;
    double axesFactor = 1;
    bool mustReArm = false;

    Time typingUntil{-1}; // what is asked for before is ignored
    Time panelUntil{-1},
        fadesUntil{-1}; // the panel begins to fade; the latest one before it is gone
};

} // namespace quenthisar
