// SPDX-License-Identifier: MIT
#include "HistoryMaker.h"

#include <algorithm>
#include <array>
#include <numeric>

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
    motion{"motion NUMBER NUMBER"}, button{"PRESS BUTTON"}, keys{"key PRESS KEY"},
    flags{"flags FLAGS"}, scroll{"scroll NUMBER"}, media{"media MEDIA PRESS"},
    advance{"advance TIME"}, seen{"dongle DONGLE seen"}, linkWaits{"link of DONGLE waits"},
    linkUp{"link of DONGLE up"}, linkFails{"link of DONGLE fails"},
    probeWaits{"probe of DONGLE waits"}, probeAnswered{"probe of DONGLE answered"},
    probeRefused{"probe of DONGLE refused"}, drop{"drop DONGLE"}, connect{"connect DONGLE"},
    disconnect{"disconnect DONGLE"}, identify{"identify DONGLE"}, takeOver{"take over DONGLE"},
    chord{"chord TEXT DONGLE"}, bind{"bind TEXT DONGLE"}, unbind{"unbind TEXT"},
    addProfile{"profile TEXT"}, switchTo{"switch TEXT"}, deleteProfile{"delete TEXT"},
    nickname{"nickname DONGLE TEXT"}, sensitivity{"sensitivity DONGLE NUMBER"},
    set{"set SETTING SWITCH"}, hotkeyV{"hotkey V"}, hotkeyDigit{"hotkey NUMBER"},
    hotkeyShift{"hotkey shift NUMBER"}, clipboard{"clipboard TEXT"},
    sends{"profile TEXT sends TEXT"};

constexpr double control = 59, option = 58, command = 55, rightCommand = 54, shift = 56;
constexpr std::array<double, 17> keyCodes{0,  11, 8,   2,  14, 3,  5,  4, 49,
                                          36, 51, 105, 82, 56, 60, 58, 59};
constexpr std::array mediaTypes{0, 7, 14, 16, 17};
constexpr std::array flagMasks{EventFlags::control | EventFlags::command,
                               EventFlags::alphaShift | EventFlags::option, std::uint64_t{0}};
constexpr std::array chordTexts{"cmd+l", "ctrl+alt+delete", "cmd+nonsense"};
constexpr std::array copied{"a", "Z", " ", "\u00E9", "\u20AC", "typed"};
constexpr std::array factors{0.1, 0.25, 0.5, 1.0, 1.0, 1.5, 2.0, 3.3};
constexpr std::array settings{0, 1, 3, 4}; // all but autoCapture

} // namespace

/// Arguments are made from left to right, as the compiler of this folder does.
struct HistoryMaker::Deeds {
    struct Deed {
        char letter;
        std::size_t others; // of the bytes that are no letter of a deed
        Step (*make)(HistoryMaker&, World&);
    };
    using Maker = HistoryMaker;

    static constexpr auto table = std::to_array<Deed>({
        // Input.
        {'m', 48, [](Maker& m, World&) { return motion(m.small(), m.small()); }},
        {'M', 2, [](Maker& m, World&) { return motion(m.small() * 500, m.small() * 500); }},
        {'e', 30, [](Maker& m, World& world) { return m.moveToAnEdge(world); }},
        {'p', 12, [](Maker& m, World&) { return moveTo(3000 * m.part() - 5, 2000 * m.part() - 5); }},
        {'b', 6, [](Maker& m, World&) { return m.pushBack(); }},
        {'r', 4, [](Maker& m, World&) { return m.returnChord(); }},
        {'d', 8, [](Maker& m, World&) { return button(1, m.upTo(2)); }},
        {'u', 8, [](Maker& m, World&) { return button(0, m.upTo(2)); }},
        {'k', 8, [](Maker& m, World&) { return keys(1, m.key()); }},
        {'K', 8, [](Maker& m, World&) { return m.release(); }},
        {'f', 2, [](Maker& m, World&) { return flags(m.bytes.oneOf(flagMasks)); }},
        {'s', 4, [](Maker& m, World&) { return scroll(m.upTo(6) - 3); }},
        {'x', 4, [](Maker& m, World&) { return media(m.bytes.oneOf(mediaTypes), m.upTo(1)); }},
        {'h', 3, [](Maker& m, World&) { return m.hotkey(); }},
        {'V', 1, [](Maker&, World&) { return hotkeyV(); }}, // as the menu's item: no key is down

        // Time.
        {'t', 6, [](Maker& m, World&) { return advance((1 + m.upTo(59)) / 1000); }},
        {'T', 3, [](Maker&, World&) { return advance(1); }},
        {'W', 1, [](Maker&, World&) { return advance(31); }},

        // The host.
        {'j', 6, [](Maker&, World&) { return capture(1); }},
        {'J', 1, [](Maker&, World&) { return capture(0); }},
        {'z', 1, [](Maker&, World&) { return refuseTap(); }},
        {'Z', 2, [](Maker&, World&) { return grantTap(); }},
        {'O', 1, [](Maker&, World&) { return timeOutTap(); }},
        {'g', 1,
         [](Maker& m, World&) {
             return screen.with("D2", 1919 + m.upTo(3), 20 * m.upTo(50) - 400, 800, 600);
         }},
        {'G', 1,
         [](Maker& m, World&) { return screen.with("D3", 40 * m.upTo(50) - 100, 1080, 1280, 720); }},
        {'U', 1, [](Maker& m, World&) { return unplug.with("D" + std::to_string(2 + m.below(2))); }},

        // The air.
        {'n', 3, [](Maker& m, World&) { return takeOver(m.dongle()); }},
        {'D', 1, [](Maker& m, World&) { return drop(m.dongle()); }},
        {'c', 4, [](Maker& m, World&) { return connect(m.dongle()); }},
        {'C', 1, [](Maker& m, World&) { return disconnect(m.dongle()); }},
        {'S', 1, [](Maker& m, World&) { return seen(m.dongle()); }},
        {'l', 1, [](Maker& m, World&) { return linkWaits(m.dongle()); }},
        {'L', 1, [](Maker& m, World&) { return linkUp(m.dongle()); }},
        {'F', 1, [](Maker& m, World&) { return linkFails(m.dongle()); }},
        {'q', 1, [](Maker& m, World&) { return probeWaits(m.dongle()); }},
        {'Q', 1, [](Maker& m, World&) { return probeRefused(m.dongle()); }},
        {'P', 1, [](Maker& m, World&) { return probeAnswered(m.dongle()); }},
        {'i', 1, [](Maker& m, World&) { return identify(m.dongle()); }},
        {'o', 2, [](Maker& m, World&) { return chord.with(m.chordText(), m.dongle()); }},

        // What the user sets and copies.
        {'B', 5, [](Maker& m, World&) { return bind.with(m.bindingPlace(), m.dongle()); }},
        {'N', 1, [](Maker& m, World&) { return unbind.with(m.bindingPlace()); }},
        {'w', 2, [](Maker& m, World&) { return switchTo.with(m.profileName()); }},
        {'a', 1,
         [](Maker& m, World& world) {
             const bool few = world.state().profiles->size() < 5;
             return (few ? addProfile : deleteProfile).with(m.profileName());
         }},
        {'A', 1, [](Maker& m, World&) { return deleteProfile.with(m.profileName()); }},
        {'R', 1,
         [](Maker& m, World& world) {
             const auto name = m.bytes.oneOf(*world.state().profiles).name;
             return sends.withTexts(name, m.chordText());
         }},
        {'I', 1,
         [](Maker& m, World&) { return nickname.with(m.bytes.flag() ? "" : "Desk", m.dongle()); }},
        {'v', 1, [](Maker& m, World&) { return sensitivity(m.dongle(), m.bytes.oneOf(factors)); }},
        {'E', 2, [](Maker& m, World&) { return set(m.bytes.oneOf(settings), m.upTo(1)); }},
        {'y', 1, [](Maker& m, World&) { return m.copy(); }},
    });

    /// The row of each byte.
    static constexpr auto rows = [] {
        std::array<std::uint8_t, 256> result{};
        std::array<bool, 256> isLetter{};
        for (const auto& deed : table) isLetter.at(static_cast<std::uint8_t>(deed.letter)) = true;
        std::size_t byte = 0; // of those that are left
        for (std::uint8_t row = 0; row < table.size(); ++row) {
            const auto& deed = table.at(row);
            result.at(static_cast<std::uint8_t>(deed.letter)) = row;
            for (std::size_t left = deed.others; left > 0; ++byte) {
                if (isLetter.at(byte)) continue;
                result.at(byte) = row;
                --left;
            }
        }
        return result;
    }();
    static_assert(std::accumulate(table.begin(), table.end(), std::size_t{0},
                                  [](std::size_t sum, const Deed& deed) {
                                      return sum + 1 + deed.others;
                                  }) == rows.size());
};

std::optional<Step> HistoryMaker::next(World& world) {
    if (!planned.empty()) {
        Step step = std::move(planned.front());
        planned.pop_front();
        return step;
    }
    if (bytes.atEnd()) return std::nullopt;
    return Deeds::table.at(Deeds::rows.at(bytes.byte())).make(*this, world);
}

double HistoryMaker::small() {
    return bytes.atEnd() ? 0 : static_cast<std::int8_t>(bytes.byte() - '0');
}

std::string HistoryMaker::bindingPlace() {
    const auto edge = bytes.oneOf(allEdges);
    return bindingKey(edge, "D" + std::to_string(1 + below(3)));
}

std::string HistoryMaker::chordText() {
    return bytes.oneOf(chordTexts);
}

double HistoryMaker::key() {
    return held.emplace_back(bytes.oneOf(keyCodes));
}

/// Of a key that is held, if one is.
Step HistoryMaker::release() {
    if (held.empty()) return keys(0, bytes.oneOf(keyCodes));
    const auto which = held.begin() + static_cast<std::ptrdiff_t>(below(held.size()));
    const double code = *which;
    held.erase(which);
    return keys(0, code);
}

/// One that a display has, with a point in or just out of its band.
Step HistoryMaker::moveToAnEdge(World& world) {
    const auto edge = bytes.oneOf(allEdges);
    const Rect frame = bytes.oneOf(*world.state().screens).cgFrame;
    const double depth = upTo(7) - 3;
    const double along = part();
    const double x = frame.x + along * frame.width;
    const double y = frame.y + along * frame.height;
    switch (edge) {
    case Edge::left: return moveTo(frame.minX() + depth, y);
    case Edge::right: return moveTo(frame.maxX() - depth, y);
    case Edge::top: return moveTo(x, frame.minY() + depth);
    case Edge::bottom: return moveTo(x, frame.maxY() - depth);
    }
    return moveTo(x, y);
}

/// Away from a side and back at it.
Step HistoryMaker::pushBack() {
    const double side = bytes.flag() ? 60 : -60;
    const bool isAcross = bytes.flag();
    planned.push_back(isAcross ? motion(-2 * side, 3) : motion(3, -2 * side));
    return isAcross ? motion(side, 0) : motion(0, side);
}

/// Its keys in any order, the left or the right command key.
Step HistoryMaker::returnChord() {
    std::vector<double> pressed{control, option, bytes.flag() ? rightCommand : command};
    std::rotate(pressed.begin(), pressed.begin() + static_cast<std::ptrdiff_t>(below(3)),
                pressed.end());
    if (bytes.flag()) std::reverse(pressed.begin(), pressed.end());
    for (const auto code : pressed) planned.push_back(keys(1, code));
    planRelease(pressed);
    return advance(0.001);
}

/// In a takeover its keys first return.
Step HistoryMaker::hotkey() {
    const auto which = below(9); // V, digits, and digits with shift
    std::vector<double> pressed{control, option, command};
    if (which > 4) pressed.push_back(shift);
    for (const auto code : pressed) planned.push_back(keys(1, code));
    const auto digit = (which + 3) % 4 + 1;
    planned.push_back(which == 0 ? hotkeyV() : (which > 4 ? hotkeyShift : hotkeyDigit)(digit));
    planned.push_back(advance(0.074 * upTo(3)));
    planRelease(pressed);
    return advance(0.02);
}

void HistoryMaker::planRelease(const std::vector<double>& pressed) {
    const auto kept = below(32); // a bit each; in most cases none
    for (std::size_t i = 0; i < pressed.size(); ++i)
        if (kept > 15 || (kept >> i & 1U) == 0) planned.push_back(keys(0, pressed[i]));
}

Step HistoryMaker::copy() {
    std::string text;
    for (auto count = below(6); count > 0; --count) text += bytes.oneOf(copied);
    return clipboard.with(text);
}

} // namespace quenthisar
