// SPDX-License-Identifier: MIT
#pragma once

#include "support/HidHost.h"
#include "support/Steps.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quenthisar {

/// What holds whatever happens.
enum class Invariant {
    nothingIsHeldAfterAReturn,
    hostSeesNothingOfATakeover,
    hostSeesEverythingElse,
    payloadsBelongToSomething,
    payloadsAreValid,
    payloadsNeedAReadyLink,
    oneProbePerLink,
    oneEventIsOnePayload,
    motionAddsUp,
    slamOnlyThroughAnEdge,
    takeoversNeedAConnectedDongle,
    edgesAreReArmedFirst,
    onlyTheUserReturns,
    modeFollowsTakeover,
    cursorFollowsTakeover,
    captureFollowsTap,
    aProfileIsActive,
    donglesAreOnlyAppended,
    settingsAreStored,
    panelsFollowTakeovers,
};

std::string_view inWords(Invariant invariant);

struct Violation {
    Invariant invariant;
    std::string detail;
};

/// Watches one world from its beginning. Keeps the first violation.
class Invariants final : public Witness {
public:
    /// A target that is deaf to the release of buttons is for testing the tests.
    enum class Target { sound, deafToButtonRelease };
    explicit Invariants(Target kind = Target::sound) : target(kind) {}

    /// The steps go through here.
    void perform(const Step& step, World& world);
    /// What is too slow to be compared after each step.
    void compareAllThatIsStored();

    std::optional<Violation> violation;

    /// What there was to watch.
    struct Sights {
        std::size_t crossings = 0, otherTakeovers = 0; // by a move; by the menu or a hotkey
        std::size_t chords = 0, pushes = 0, stops = 0; // the ends of takeovers
        std::int64_t payloads = 0;                     // for events
        std::int64_t typed = 0;                        // payloads of clipboard typing
        std::size_t profileChords = 0, panels = 0;

        void operator+=(const Sights& more) {
            crossings += more.crossings;
            otherTakeovers += more.otherTakeovers;
            chords += more.chords;
            pushes += more.pushes;
            stops += more.stops;
            payloads += more.payloads;
            typed += more.typed;
            profileChords += more.profileChords;
            panels += more.panels;
        }
    };
    Sights seen;

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
    void require(bool holds, Invariant invariant, const std::string& detail);
    double factor(std::size_t dongle) const;
    bool isReady(std::size_t dongle) const;

    Target target;
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
