// SPDX-License-Identifier: MIT
#include "Invariants.h"

#include "Model/StoredProfiles.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>

namespace quenthisar {

namespace {

constexpr std::uint64_t returnChord =
    EventFlags::control | EventFlags::option | EventFlags::command;
constexpr std::chrono::milliseconds perCharacter{74}, panelTime{2600}, panelFade{300};
constexpr std::array<int, 10> wiggle{25, 15, 0, -15, -25, -25, -15, 0, 15, 25};

bool isMotion(EventType type) {
    return type == EventType::mouseMoved || type == EventType::leftMouseDragged ||
           type == EventType::rightMouseDragged || type == EventType::otherMouseDragged;
}

Payload keyPayload(std::uint8_t modifiers, std::uint8_t usage) {
    Payload payload{1, modifiers};
    payload[9] = usage;
    return payload;
}

/// Nothing for a text that is no chord; of the others, histories have these.
std::optional<Payload> chordPayload(std::string_view text) {
    if (text == "cmd+l") return keyPayload(8, 0x0F);
    if (text == "ctrl+alt+delete") return keyPayload(5, 0x2A);
    return std::nullopt;
}

/// The presses that type a text of letters, spaces and one accent; all else in it is left out.
std::vector<Payload> presses(std::string_view text) {
    std::vector<Payload> result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const auto usage = [&](char first) { return static_cast<std::uint8_t>(4 + c - first); };
        if (c >= 'a' && c <= 'z') result.push_back(keyPayload(0, usage('a')));
        if (c >= 'A' && c <= 'Z') result.push_back(keyPayload(2, usage('A')));
        if (c == ' ') result.push_back(keyPayload(0, 0x2C));
        if (text.substr(i).starts_with("\u00E9")) result.push_back(keyPayload(0, 8));
    }
    return result;
}

template <class Value>
bool isStored(const FakeUserDefaults& defaults, const char* key,
              const std::map<Uuid, Value>& field) {
    DefaultsDictionary dictionary;
    for (const auto& [id, value] : field) dictionary[id.text()] = {value};
    return valueOf<DefaultsDictionary>(defaults, key).value_or(DefaultsDictionary{}) == dictionary;
}

} // namespace

void Invariants::require(bool holds, std::string_view invariant, const std::string& detail) {
    if (!holds && !violation) violation = {invariant, detail};
}

double Invariants::factor(std::size_t dongle) const {
    const auto& factors = *world->state().sensitivities;
    const auto it = factors.find(World::dongleID(dongle));
    return it != factors.end() ? it->second : 1.0;
}

bool Invariants::isReady(std::size_t dongle) const {
    return probed.at(dongle) && world->peripheral(dongle).state() == PeripheralState::connected;
}

void Invariants::perform(const Step& step, World& w) {
    world = &w;
    announce(step);
    Steps::perform(step, w);
    checkState();
    w.central.writes.clear();
}

void Invariants::announce(const Step& step) {
    static const auto chord = Steps::command("chord TEXT DONGLE");
    static const auto identify = Steps::command("identify DONGLE");
    static const auto type = Steps::command("hotkey V");
    const auto now = world->clock.now();
    const auto dongle = [&] { return static_cast<std::size_t>(step.numbers[0]); };
    if (step.command == chord) {
        announceChord(step.texts[0], dongle());
    } else if (step.command == identify) {
        for (std::size_t k = 1; k <= 30; ++k)
            announced.push_back({now + k * std::chrono::milliseconds{20}, dongle(),
                                 Report::mouse({.dx = wiggle.at((k - 1) % 10)})});
    } else if (step.command == type) {
        announceTyping();
    }
}

void Invariants::announceChord(const std::string& text, std::size_t dongle) {
    const auto payload = chordPayload(text);
    if (!payload) return;
    const auto now = world->clock.now();
    announced.push_back({now, dongle, *payload});
    announced.push_back({now + std::chrono::milliseconds{50}, dongle, keyPayload(0, 0), true});
}

void Invariants::announceTyping() {
    auto when = world->clock.now();
    const auto dongle = clipboardTarget();
    if (when < typingUntil || !dongle) return;
    for (const auto& press : presses(world->pasteboard.text.value_or(""))) {
        announced.push_back({when, *dongle, press, false, true});
        announced.push_back({when, *dongle, keyPayload(0, 0), false, true});
        when += perCharacter;
    }
    typingUntil = when;
}

std::optional<std::size_t> Invariants::clipboardTarget() const {
    const auto& state = world->state();
    if (const auto& takeover = *state.takeover) return World::index(takeover->dongleID);
    std::optional<std::size_t> first;
    for (const auto& dongle : *state.dongles) {
        if (dongle.state != DongleConnectionState::connected) continue;
        const auto index = World::index(dongle.id);
        for (const auto& profile : *state.profiles)
            for (const auto& [edge, bound] : profile.bindings)
                if (bound == dongle.id) return index;
        if (!first) first = index;
    }
    return first;
}

bool Invariants::wasAnnounced(std::size_t dongle, const Payload& payload) {
    const auto now = world->clock.now();
    const auto it = std::ranges::find_if(announced, [&](const Announced& a) {
        return a.when == now && a.dongle == dongle && a.payload == payload;
    });
    if (it == announced.end()) return false;
    seen[typed] += it->isTyped ? 1 : 0;
    announced.erase(it);
    return true;
}

/// Its chord goes to the first of its dongles that is there.
void Invariants::profileWillBe(const Uuid& id) {
    if (!world) return;
    const auto& state = world->state();
    const auto profile = std::ranges::find(*state.profiles, id, &Profile::id);
    if (profile == state.profiles->end() || profile->targetCommand.empty()) return;
    for (const auto& dongle : *state.dongles) {
        const bool isBound = std::ranges::any_of(
            profile->bindings, [&](const auto& binding) { return binding.second == dongle.id; });
        if (!isBound || dongle.state != DongleConnectionState::connected) continue;
        ++seen[profileChord];
        return announceChord(profile->targetCommand, World::index(dongle.id));
    }
}

void Invariants::linkLost(const Uuid& id) {
    const auto dongle = World::index(id);
    hosts.at(dongle).releaseAll();
    probed.at(dongle) = false;
}

void Invariants::wrote(const Write& write) {
    if (!world) return;
    const auto dongle = World::index(write.id);
    const auto name = World::dongleName(write.id);
    require(world->peripheral(dongle).state() == PeripheralState::connected,
            Invariant::payloadsNeedAReadyLink, name + " has no link");
    if (write.type == WriteType::withResponse) {
        require(!probed.at(dongle) && write.payload == Payload{}, Invariant::oneProbePerLink, name);
        probed.at(dongle) = true;
        return;
    }
    require(probed.at(dongle), Invariant::payloadsNeedAReadyLink, name + " was not probed");

    auto& host = hosts.at(dongle);
    const auto fault = host.take(write.payload);
    require(fault.empty(), Invariant::payloadsAreValid, fault);

    const auto& takeover = *world->state().takeover;
    const bool isActive = takeover && takeover->dongleID == write.id;
    if (!posting) {
        // Stopping capture releases; all else has its time.
        const bool releases =
            isActive && (write.payload == Payload{1} || write.payload == Payload{2});
        require(wasAnnounced(dongle, write.payload) || releases,
                Invariant::payloadsBelongToSomething, "for " + name);
        return;
    }
    ++payloads;
    if (isActive) return;
    require(!takeover && !slammed, Invariant::payloadsBelongToSomething, "for " + name);
    slammed = dongle;
}

void Invariants::takeoverWillBe(const std::optional<Takeover>& next) {
    if (!world) return;
    const auto& state = world->state();
    const auto now = world->clock.now();
    if (next && *state.hudEnabled) {
        // It replaces one that is not fading yet.
        if (panelUntil <= now) fadesUntil = std::max(fadesUntil, panelUntil + panelFade);
        panelUntil = now + panelTime;
        ++seen[panel];
    } else if (panelUntil > now) {
        panelUntil = now;
    }
    if (!next) {
        const bool returns = posting && event.type == EventType::flagsChanged &&
                             (event.flags & returnChord) == returnChord;
        const bool pushed = posting && isMotion(event.type) && state.takeover->has_value() &&
                            (*state.takeover)->edge;
        require(returns || pushed || !posting, Invariant::onlyTheUserReturns, "by another event");
        mustReArm = true;
        ++seen[returns ? chord : pushed ? push : stop];
        return;
    }
    ++seen[next->edge ? crossing : otherTakeover];
    const Dongle* dongle = state.dongle(next->dongleID);
    require(dongle && dongle->state == DongleConnectionState::connected && !*state.takeover,
            Invariant::takeoversNeedAConnectedDongle, World::dongleName(next->dongleID));
    const bool throughEdge = next->edge.has_value();
    require(throughEdge == next->screenUUID.has_value() && throughEdge == posting,
            Invariant::takeoversNeedAConnectedDongle, "an edge without its display");
    require(!throughEdge || !mustReArm, Invariant::edgesAreReArmedFirst, "");

    const auto index = World::index(next->dongleID);
    const bool slams = throughEdge && *state.cornerSlam && isReady(index);
    require(slammed == (slams ? std::optional{index} : std::nullopt),
            Invariant::slamOnlyThroughAnEdge, slams ? "none came" : "one came");
    slammed.reset();
    axesFactor = factor(index);
    axes.fill({.tolerance = axesFactor == 1.0 ? 0.0 : 1.0});
}

void Invariants::willPost(const TapEvent& next) {
    if (!world) return;
    posting = true;
    event = next;
    before = *world->state().takeover;
    payloads = 0;
    if (!before) return;
    const auto dongle = World::index(before->dongleID);
    factorBefore = factor(dongle);
    positionBefore = {hosts.at(dongle).x, hosts.at(dongle).y};
}

void Invariants::posted(const TapEvent&, TapVerdict verdict) {
    if (!world) return;
    posting = false;
    const bool swallowed = verdict == TapVerdict::swallow;
    const bool isRemote = world->state().takeover->has_value();
    require(!slammed, Invariant::payloadsBelongToSomething, "a payload without a takeover");
    seen[payload] += static_cast<std::size_t>(payloads);
    if (!before) {
        require(swallowed == isRemote && (!isRemote || isMotion(event.type)),
                Invariant::hostSeesEverythingElse, "");
        if (!swallowed && isMotion(event.type) && *world->state().captureEnabled) mustReArm = false;
        return;
    }
    require(swallowed, Invariant::hostSeesNothingOfATakeover, "");
    const auto dongle = World::index(before->dongleID);
    const bool ready = isReady(dongle);
    const bool mediaKey = event.type == EventType::systemDefined; // some have no usage
    const int wanted = !ready ? 0 : isRemote ? 1 : 2;
    require(payloads == wanted || (mediaKey && payloads == 0), Invariant::oneEventIsOnePayload,
            std::to_string(payloads) + " payloads");
    const bool chord =
        event.type == EventType::flagsChanged && (event.flags & returnChord) == returnChord;
    require(!chord || !isRemote, Invariant::onlyTheUserReturns, "the chord does not return");
    // The move that pushes back is not sent, the crossing one was before the takeover.
    if (isRemote && isMotion(event.type)) checkMotion(event, dongle);
}

void Invariants::checkMotion(const TapEvent& moved, std::size_t dongle) {
    const auto& host = hosts.at(dongle);
    const std::array arrived{host.x - positionBefore[0], host.y - positionBefore[1]};
    const std::array made{moved.deltaX, moved.deltaY};
    for (std::size_t i = 0; i < axes.size(); ++i) {
        auto& axis = axes.at(i);
        const bool saturated = arrived.at(i) >= 0x7FFF || arrived.at(i) <= -0x8000;
        // Exempt: a change of factor, a link that was not there, saturation. The sum starts anew,
        // with what remained of the old one.
        if (factorBefore != axesFactor || !isReady(dongle) || saturated)
            axis = {.tolerance = factorBefore == 1.0 ? 0.0 : 2.0};
        if (!isReady(dongle) || saturated) continue;
        axis.expected += factorBefore * static_cast<double>(made.at(i));
        axis.arrived += arrived.at(i);
        const double error = std::abs(axis.expected - static_cast<double>(axis.arrived));
        require(error < axis.tolerance + 1e-6, Invariant::motionAddsUp,
                std::to_string(axis.arrived) + " units instead of " +
                    std::to_string(axis.expected));
    }
    axesFactor = factorBefore;
}

void Invariants::checkState() {
    const auto& state = world->state();
    const auto now = world->clock.now();
    const bool isRemote = state.takeover->has_value();
    std::erase_if(announced, [&](const Announced& a) { return a.when <= now; });

    for (std::size_t dongle = 0; dongle < hosts.size(); ++dongle) {
        if (!hosts.at(dongle).holdsKeysOrButtons()) continue; // media keys are exempt
        const bool isActive = isRemote && (*state.takeover)->dongleID == World::dongleID(dongle);
        const bool chordIsDown = std::ranges::any_of(
            announced, [&](const Announced& a) { return a.isChordRelease && a.dongle == dongle; });
        require(isActive || chordIsDown, Invariant::nothingIsHeldAfterAReturn,
                "on " + World::dongleName(World::dongleID(dongle)));
    }

    require(isRemote == (*state.activeMode != "Local"), Invariant::modeFollowsTakeover,
            *state.activeMode);
    require(isRemote == world->cursorFrozen && world->cursorHidden == (isRemote ? 1 : 0),
            Invariant::cursorFollowsTakeover, std::to_string(world->cursorHidden) + " hidden");
    require(*state.captureEnabled == world->taps.hasSource && (!isRemote || *state.captureEnabled),
            Invariant::captureFollowsTap, "");
    require(std::ranges::find(*state.profiles, *state.activeProfileID, &Profile::id) !=
                state.profiles->end(),
            Invariant::aProfileIsActive, "");

    const auto& dongles = *state.dongles;
    bool same = dongles.size() >= listed.size();
    for (std::size_t i = 0; same && i < listed.size(); ++i) same = dongles[i].id == listed[i];
    require(same, Invariant::donglesAreOnlyAppended, "");
    for (auto i = listed.size(); same && i < dongles.size(); ++i) {
        require(std::ranges::find(listed, dongles[i].id) == listed.end(),
                Invariant::donglesAreOnlyAppended, "twice");
        listed.push_back(dongles[i].id);
    }
    checkPanels();
    if (!world->defaults.writes.empty()) compareAllThatIsStored();
}

void Invariants::checkPanels() {
    const auto now = world->clock.now();
    const int shown = world->panels.shown();
    require(shown > 0 || now >= panelUntil, Invariant::panelsFollowTakeovers, "it is not there");
    require(shown == 0 || now < panelUntil + panelFade || now < fadesUntil,
            Invariant::panelsFollowTakeovers, "it is still there");
}

void Invariants::compareAllThatIsStored() {
    const auto& state = world->state();
    const auto& defaults = world->defaults;
    const auto stores = [&](bool holds, const char* key) {
        require(holds, Invariant::settingsAreStored, key);
    };
    stores(valueOf<bool>(defaults, "cornerSlam") == *state.cornerSlam, "cornerSlam");
    stores(valueOf<bool>(defaults, "hudEnabled") == *state.hudEnabled, "hudEnabled");
    stores(valueOf<bool>(defaults, "autoConnect") == *state.autoConnect, "autoConnect");
    stores(valueOf<bool>(defaults, "allowSharedEdges") == *state.allowSharedEdges,
           "allowSharedEdges");
    stores(decodeProfiles(defaults.data("profiles")) == *state.profiles, "profiles");
    stores(isStored(defaults, "dongleNicknames", *state.nicknames), "dongleNicknames");
    stores(isStored(defaults, "sensitivities", *state.sensitivities), "sensitivities");
    world->defaults.writes.clear();
}

} // namespace quenthisar
