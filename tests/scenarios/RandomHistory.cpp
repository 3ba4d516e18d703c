// SPDX-License-Identifier: MIT
#include "scenarios/RandomHistory.h"

#include "scenarios/Scribe.h"

#include <algorithm>
#include <array>

namespace quenthisar {

namespace {

/// A step of the command with this pattern.
class Kind {
public:
    explicit Kind(std::string_view pattern) : command(Steps::command(pattern)) {}

    template <class... Numbers>
    Step operator()(Numbers... numbers) const {
        return {.command = command, .numbers = {static_cast<double>(numbers)...}};
    }
    template <class... Numbers>
    Step with(std::string text, Numbers... numbers) const {
        return {.command = command,
                .numbers = {static_cast<double>(numbers)...},
                .texts = {std::move(text)}};
    }

    Step withTexts(std::string first, std::string second) const {
        return {.command = command, .texts = {std::move(first), std::move(second)}};
    }

private:
    std::size_t command;
};

const Kind screen{"screen TEXT NUMBER NUMBER NUMBER NUMBER"}, unplug{"unplug TEXT"},
    capture{"capture SWITCH"}, refuseTap{"tap refused"}, grantTap{"tap granted"},
    timeOutTap{"tap disabled by time-out"}, moveTo{"move NUMBER NUMBER"},
    motion{"motion NUMBER NUMBER"}, button{"PRESS BUTTON"}, key{"key PRESS KEY"},
    flags{"flags FLAGS"}, scroll{"scroll NUMBER"}, media{"media MEDIA PRESS"},
    advance{"advance TIME"}, connected{"dongle DONGLE connected"}, seen{"dongle DONGLE seen"},
    linkWaits{"link of DONGLE waits"}, linkUp{"link of DONGLE up"},
    linkFails{"link of DONGLE fails"}, probeWaits{"probe of DONGLE waits"},
    probeAnswered{"probe of DONGLE answered"}, probeRefused{"probe of DONGLE refused"},
    drop{"drop DONGLE"}, connect{"connect DONGLE"}, disconnect{"disconnect DONGLE"},
    identify{"identify DONGLE"}, takeOver{"take over DONGLE"}, chord{"chord TEXT DONGLE"},
    bind{"bind TEXT DONGLE"}, unbind{"unbind TEXT"}, addProfile{"profile TEXT"},
    switchTo{"switch TEXT"}, deleteProfile{"delete TEXT"}, nickname{"nickname DONGLE TEXT"},
    sensitivity{"sensitivity DONGLE NUMBER"}, set{"set SETTING SWITCH"}, hotkeyV{"hotkey V"},
    hotkey{"hotkey NUMBER"}, hotkeyShift{"hotkey shift NUMBER"}, clipboard{"clipboard TEXT"},
    sends{"profile TEXT sends TEXT"};

constexpr double control = 59, option = 58, command = 55, shift = 56;
constexpr std::array chordTexts{"cmd+l", "ctrl+alt+delete", "cmd+nonsense"};

} // namespace

std::string HistoryMaker::bindingPlace() {
    const auto edge = allEdges.at(below(allEdges.size()));
    return bindingKey(edge, "D" + std::to_string(1 + below(3)));
}

std::string HistoryMaker::chordText() {
    return chordTexts.at(below(chordTexts.size()));
}

Step HistoryMaker::next(World& world) {
    if (!planned.empty()) {
        Step step = std::move(planned.front());
        planned.pop_front();
        return step;
    }
    const auto& state = world.state();
    if (chance(4)) return advance(between(1, 60) / 1000);
    if (chance(3)) return air();
    if (chance(3)) return edit(world);
    if (chance(1)) return shell(world);
    if (!*state.captureEnabled && chance(30)) return capture(1);
    return *state.takeover ? remoteInput() : localInput(world);
}

/// What the user does without the pointer: copies, presses hotkeys. In a takeover the keys of a
/// hotkey first return.
Step HistoryMaker::shell(World& world) {
    constexpr std::array pieces{"a", "Z", " ", "\u00E9", "\u20AC", "typed"};
    if (chance(20)) {
        std::string text;
        for (auto count = below(6); count > 0; --count) text += pieces.at(below(pieces.size()));
        return clipboard.with(text);
    }
    if (chance(20)) {
        const auto& profiles = *world.state().profiles;
        return sends.withTexts(profiles.at(below(profiles.size())).name, chordText());
    }
    if (chance(15)) return hotkeyV(); // as the menu's item: nothing else is pressed
    const bool isShifted = chance(30);
    std::vector<double> keys{control, option, command};
    if (isShifted) keys.push_back(shift);
    for (const auto code : keys) planned.push_back(key(1, code));
    planned.push_back(chance(50) ? hotkeyV() : (isShifted ? hotkeyShift : hotkey)(between(1, 4)));
    if (chance(50)) planned.push_back(advance(0.074 * between(0, 3)));
    for (const auto code : keys)
        if (chance(80)) planned.push_back(key(0, code));
    return advance(0.02);
}

Step HistoryMaker::localInput(World& world) {
    if (chance(3)) return takeOver(dongle());
    if (chance(40)) return moveToAnEdge(world);
    if (chance(40)) return moveTo(between(-5, 3000), between(-5, 2000));
    if (chance(10)) return motion(between(-50, 50), between(-50, 50));
    return anyInput();
}

Step HistoryMaker::remoteInput() {
    if (chance(1)) return takeOver(dongle());
    if (chance(1)) { // the way back, left and right keys in any order
        const bool right = chance(50);
        std::array keys{control, option, right ? 54.0 : command};
        std::ranges::shuffle(keys, random);
        for (const auto code : keys) planned.push_back(key(1, code));
        for (const auto code : keys)
            if (chance(80)) planned.push_back(key(0, code));
        return advance(0.001);
    }
    if (chance(2)) return motion(between(-2000, 2000), between(-2000, 2000));
    if (chance(1)) return motion(between(-99999, 99999), 40000);
    if (chance(1)) { // away from a side and back at it
        const double side = chance(50) ? 60 : -60;
        const bool along = chance(50);
        planned.push_back(along ? motion(-2 * side, 3) : motion(3, -2 * side));
        return along ? motion(side, 0) : motion(0, side);
    }
    if (below(400) == 0) return capture(0);
    if (chance(55)) return motion(between(-12, 12), between(-12, 12));
    return anyInput();
}

Step HistoryMaker::anyInput() {
    constexpr std::array<double, 17> codes{0,  11, 8,   2,  14, 3,  5,  4, 49,
                                           36, 51, 105, 82, 56, 60, 58, 59};
    if (chance(25)) return button(below(2), below(3));
    if (chance(10)) return scroll(between(-3, 3));
    if (chance(10)) {
        constexpr std::array types{0, 7, 14, 16, 17};
        return media(types.at(below(types.size())), below(2));
    }
    if (chance(5)) {
        constexpr std::array masks{EventFlags::control | EventFlags::command,
                                   EventFlags::alphaShift | EventFlags::option, std::uint64_t{0}};
        return flags(masks.at(below(masks.size())));
    }
    if (!held.empty() && below(10) < held.size() + 2) {
        const auto at = held.begin() + static_cast<std::ptrdiff_t>(below(held.size()));
        const double code = *at;
        if (chance(90)) held.erase(at);
        return key(0, code);
    }
    held.push_back(codes.at(below(codes.size())));
    return key(1, held.back());
}

/// One that a display has, with a point in or just out of its band.
Step HistoryMaker::moveToAnEdge(World& world) {
    const auto& screens = *world.state().screens;
    const Rect f = screens.at(below(screens.size())).cgFrame;
    const double depth = between(-3, 4);
    const double x = f.x + between(0, static_cast<int>(f.width));
    const double y = f.y + between(0, static_cast<int>(f.height));
    switch (allEdges.at(below(allEdges.size()))) {
    case Edge::left: return moveTo(f.minX() + depth, y);
    case Edge::right: return moveTo(f.maxX() - depth, y);
    case Edge::top: return moveTo(x, f.minY() + depth);
    case Edge::bottom: return moveTo(x, f.maxY() - depth);
    }
    return moveTo(x, y);
}

Step HistoryMaker::edit(World& world) {
    constexpr std::array factors{0.1, 0.25, 0.5, 1.0, 1.0, 1.5, 2.0, 3.3};
    constexpr std::array toggled{0, 1, 3, 4}; // all but autoCapture
    switch (below(14)) {
    case 0:
    case 1:
    case 2: return bind.with(bindingPlace(), dongle());
    case 3: return unbind.with(bindingPlace());
    case 4: return switchTo.with(profileName());
    case 5:
        if (world.state().profiles->size() < 5) return addProfile.with(profileName());
        return deleteProfile.with(profileName());
    case 6: return nickname.with(chance(50) ? "Desk" : "", dongle());
    case 7: return sensitivity(dongle(), factors.at(below(factors.size())));
    case 8:
    case 9: return set(toggled.at(below(toggled.size())), below(2));
    case 10: return screen.with("D2", 1920 + between(-1, 2), between(-400, 600), 800, 600);
    case 11: return screen.with("D3", between(-100, 1900), 1080, 1280, 720);
    case 12: return unplug.with("D" + std::to_string(2 + below(2)));
    default: return chance(50) ? capture(below(2)) : (chance(30) ? refuseTap() : grantTap());
    }
}

Step HistoryMaker::air() {
    switch (below(18)) {
    case 0:
    case 1: return drop(dongle());
    case 2:
    case 3:
    case 4: return connect(dongle());
    case 5: return disconnect(dongle());
    case 6: return seen(dongle());
    case 7: return linkWaits(dongle());
    case 8: return linkUp(dongle());
    case 9: return linkFails(dongle());
    case 10: return probeWaits(dongle());
    case 11: return probeRefused(dongle());
    case 12: return probeAnswered(dongle());
    case 13: return identify(dongle());
    case 14:
    case 15: return chord.with(chordText(), dongle());
    case 16: return timeOutTap();
    default: return advance(chance(80) ? 1.0 : 31.0);
    }
}

Life live(std::uint64_t seed, std::size_t length, Invariants::Target target) {
    Invariants invariants(target);
    World world(invariants);
    HistoryMaker maker(seed);
    Life life;
    auto& steps = life.steps;
    steps = {screen.with("D1", 0, 0, 1920, 1080), screen.with("D2", 1920, 200, 800, 600)};
    for (const int dongle : {0, 1, 2}) steps.push_back(connected(dongle));
    steps.push_back(bind.with("left|D1", 0));
    steps.push_back(bind.with("right|D2", 1));
    steps.push_back(set(0, seed % 2));
    for (std::size_t at = 0; at < length && !life.breach; ++at) {
        if (at == steps.size()) steps.push_back(maker.next(world));
        invariants.perform(steps[at], world);
        if (at + 1 == length) invariants.compareAllThatIsStored();
        if (invariants.violation) life.breach = {*invariants.violation, at};
    }
    life.seen = invariants.seen;
    return life;
}

std::optional<Breach> breachOf(std::span<const Step> history, Invariants::Target target) {
    Invariants invariants(target);
    World world(invariants);
    for (std::size_t at = 0; at < history.size(); ++at) {
        invariants.perform(history[at], world);
        if (at + 1 == history.size()) invariants.compareAllThatIsStored();
        if (invariants.violation) return Breach{*invariants.violation, at};
    }
    return std::nullopt;
}

History shrunk(History history, std::string_view broken, Invariants::Target target) {
    const auto stillBreaks = [&](const History& candidate) {
        const auto breach = breachOf(candidate, target);
        return breach && breach->violation.invariant == broken;
    };
    // Halves first, then smaller chunks, in the end single steps as long as any can go.
    for (auto chunk = std::max<std::size_t>(history.size() / 2, 1);;) {
        bool shorter = false;
        for (std::size_t at = 0; at < history.size();) {
            History candidate(history.begin(), history.begin() + static_cast<std::ptrdiff_t>(at));
            const auto end = std::min(at + chunk, history.size());
            candidate.insert(candidate.end(), history.begin() + static_cast<std::ptrdiff_t>(end),
                             history.end());
            if (stillBreaks(candidate)) {
                history = std::move(candidate);
                shorter = true;
            } else {
                at += chunk;
            }
        }
        if (chunk == 1 && !shorter) return history;
        if (chunk > 1) chunk /= 2;
    }
}

std::string asScenario(std::span<const Step> history) {
    Scribe scribe;
    World world(scribe);
    std::string text;
    for (const auto& step : history) {
        text += Steps::text(step) + '\n';
        Steps::perform(step, world);
        const auto came = scribe.take();
        if (Steps::isArrangement(step)) continue;
        for (const auto& line : came) text += "    " + line + '\n';
    }
    return text;
}

} // namespace quenthisar
