// SPDX-License-Identifier: MIT
#include "support/Steps.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <span>
#include <vector>

namespace quenthisar::Steps {

namespace {

std::size_t count(double number) {
    return static_cast<std::size_t>(number);
}

std::int64_t whole(double number) {
    return static_cast<std::int64_t>(number);
}

constexpr std::uint32_t hotkeyModifiers =
    HotkeyModifiers::control | HotkeyModifiers::option | HotkeyModifiers::command;

std::array<Published<bool>*, 5> settings(AppState& state) {
    return {&state.cornerSlam, &state.autoConnect, &state.autoCapture, &state.hudEnabled,
            &state.allowSharedEdges};
}

/// Seen, linked and ready, whatever it takes.
void connectAtOnce(World& w, std::size_t dongle) {
    w.discover(dongle);
    w.core().manager.connect(World::dongleID(dongle));
}

void discoverAs(World& w, const Step& s) {
    w.peripheral(count(s.numbers[0])).peripheralName = s.texts[0];
    w.discover(count(s.numbers[0]));
}

void discoverHeld(World& w, const Step& s) {
    w.peripheral(count(s.numbers[0])).link = PeripheralState::connected;
    w.discover(count(s.numbers[0]));
}

void setBinding(World& w, const std::string& key, const std::optional<Uuid>& dongle) {
    const auto bar = std::min(key.find('|'), key.size());
    const auto edge = edgeFrom(std::string_view{key}.substr(0, bar));
    if (edge) w.state().setBinding(std::string_view{key}.substr(bar + 1), *edge, dongle);
}

void setHook(World& w, const Step& s) {
    w.state().updateProfile(w.profile(s.texts[0]), [&](Profile& profile) {
        (s.numbers[0] != 0 ? profile.activateCommand : profile.deactivateCommand) = s.texts[1];
    });
}

/// Of the digit's key on the main keyboard; n counts from 1.
void pressDigitHotkey(World& w, std::size_t n, std::uint32_t moreModifiers) {
    constexpr std::array<std::uint32_t, 9> keyCodes{18, 19, 20, 21, 23, 22, 26, 28, 25};
    if (n >= 1 && n <= keyCodes.size())
        w.pressHotkey(keyCodes.at(n - 1), hotkeyModifiers | moreModifiers);
}

void advance(World& w, double seconds) {
    w.clock.advance(std::chrono::round<VirtualClock::Nanoseconds>(Seconds{seconds}));
}

struct Command {
    std::string_view pattern; // words in capitals are placeholders
    void (*run)(World&, const Step&);
    bool arranges = false;
};

/// The first one that a line fits counts.
constexpr auto commands = std::to_array<Command>({
    // The host: displays, in global display coordinates, and input.
    {"screen TEXT NUMBER NUMBER NUMBER NUMBER",
     [](World& w, const Step& s) {
         w.plug(s.texts[0], {s.numbers[0], s.numbers[1], s.numbers[2], s.numbers[3]});
     }},
    {"unplug TEXT", [](World& w, const Step& s) { w.unplug(s.texts[0]); }},
    {"capture SWITCH",
     [](World& w, const Step& s) {
         auto& controller = w.core().controller;
         s.numbers[0] != 0 ? controller.start() : controller.stop();
     }},
    {"tap refused", [](World& w, const Step&) { w.taps.refuses = true; }},
    {"tap granted", [](World& w, const Step&) { w.taps.refuses = false; }},
    {"tap disabled by time-out",
     [](World& w, const Step&) { w.disableTap(EventType::tapDisabledByTimeout); }},
    {"tap disabled by user",
     [](World& w, const Step&) { w.disableTap(EventType::tapDisabledByUserInput); }},
    {"move NUMBER NUMBER",
     [](World& w, const Step& s) { w.moveTo({s.numbers[0], s.numbers[1]}); }},
    {"motion NUMBER NUMBER",
     [](World& w, const Step& s) { w.moveBy(whole(s.numbers[0]), whole(s.numbers[1])); }},
    {"PRESS BUTTON",
     [](World& w, const Step& s) { w.button(count(s.numbers[1]), s.numbers[0] != 0); }},
    {"key PRESS KEY",
     [](World& w, const Step& s) { w.key(whole(s.numbers[1]), s.numbers[0] != 0); }},
    {"flags FLAGS", [](World& w, const Step& s) { w.setFlags(count(s.numbers[0])); }},
    {"scroll NUMBER", [](World& w, const Step& s) { w.scroll(whole(s.numbers[0])); }},
    {"media MEDIA PRESS",
     [](World& w, const Step& s) { w.mediaKey(whole(s.numbers[0]), s.numbers[1] != 0); }},
    {"advance TIME", [](World& w, const Step& s) { advance(w, s.numbers[0]); }},

    // The air.
    {"dongle DONGLE connected",
     [](World& w, const Step& s) { connectAtOnce(w, count(s.numbers[0])); }, true},
    {"dongle DONGLE seen", [](World& w, const Step& s) { w.discover(count(s.numbers[0])); }},
    {"dongle DONGLE seen as TEXT", discoverAs},
    {"dongle DONGLE seen with a link", discoverHeld},
    {"dongle DONGLE has no service",
     [](World& w, const Step& s) { w.peripheral(count(s.numbers[0])).offered.clear(); }},
    {"link of DONGLE waits",
     [](World& w, const Step& s) { w.peripheral(count(s.numbers[0])).answersConnect = false; }},
    {"link of DONGLE up", [](World& w, const Step& s) { w.linkUp(count(s.numbers[0])); }},
    {"link of DONGLE fails", [](World& w, const Step& s) { w.failLink(count(s.numbers[0])); }},
    {"probe of DONGLE waits",
     [](World& w, const Step& s) { w.peripheral(count(s.numbers[0])).answersProbe = false; }},
    {"probe of DONGLE answered",
     [](World& w, const Step& s) { w.answerProbes(count(s.numbers[0]), std::nullopt); }},
    {"probe of DONGLE refused",
     [](World& w, const Step& s) { w.answerProbes(count(s.numbers[0]), "refused"); }},
    {"drop DONGLE", [](World& w, const Step& s) { w.drop(count(s.numbers[0])); }},
    {"power POWER",
     [](World& w, const Step& s) {
         w.core();
         w.central.setPower(static_cast<CentralState>(count(s.numbers[0])));
     }},

    // The user and the user's settings. A hotkey's modifiers are input, above.
    {"hotkey V", [](World& w, const Step&) { w.pressHotkey(9, hotkeyModifiers); }},
    {"hotkey NUMBER", [](World& w, const Step& s) { pressDigitHotkey(w, count(s.numbers[0]), 0); }},
    {"hotkey shift NUMBER",
     [](World& w, const Step& s) {
         pressDigitHotkey(w, count(s.numbers[0]), HotkeyModifiers::shift);
     }},
    {"clipboard TEXT", [](World& w, const Step& s) { w.pasteboard.text = s.texts[0]; }},
    {"watch panels", [](World& w, const Step&) { w.watchPanels(); }},
    {"connect DONGLE",
     [](World& w, const Step& s) {
         w.core().manager.connect(World::dongleID(count(s.numbers[0])));
     }},
    {"disconnect DONGLE",
     [](World& w, const Step& s) {
         w.core().manager.disconnect(World::dongleID(count(s.numbers[0])));
     }},
    {"identify DONGLE",
     [](World& w, const Step& s) {
         w.core().manager.identify(World::dongleID(count(s.numbers[0])));
     }},
    {"take over DONGLE",
     [](World& w, const Step& s) {
         w.core().controller.takeOver(World::dongleID(count(s.numbers[0])));
     }},
    {"chord TEXT DONGLE",
     [](World& w, const Step& s) {
         w.sendChord(s.texts[0], count(s.numbers[0]));
     }},
    {"bind TEXT DONGLE",
     [](World& w, const Step& s) {
         setBinding(w, s.texts[0], World::dongleID(count(s.numbers[0])));
     }},
    {"unbind TEXT", [](World& w, const Step& s) { setBinding(w, s.texts[0], std::nullopt); }},
    {"profile TEXT", [](World& w, const Step& s) { w.state().addProfile(s.texts[0]); }},
    {"profile TEXT HOOK TEXT", setHook},
    {"profile TEXT sends TEXT",
     [](World& w, const Step& s) {
         w.state().updateProfile(w.profile(s.texts[0]),
                                 [&](Profile& profile) { profile.targetCommand = s.texts[1]; });
     }},
    {"switch TEXT",
     [](World& w, const Step& s) { w.state().switchProfile(w.profile(s.texts[0])); }},
    {"delete TEXT",
     [](World& w, const Step& s) { w.state().deleteProfile(w.profile(s.texts[0])); }},
    {"nickname DONGLE TEXT",
     [](World& w, const Step& s) {
         w.state().setNickname(s.texts[0], World::dongleID(count(s.numbers[0])));
     }},
    {"sensitivity DONGLE NUMBER",
     [](World& w, const Step& s) {
         w.state().setSensitivity(s.numbers[1], World::dongleID(count(s.numbers[0])));
     }},
    {"set SETTING SWITCH",
     [](World& w, const Step& s) {
         *settings(w.state()).at(count(s.numbers[0])) = s.numbers[1] != 0;
     }},
    {"show settings", [](World& w, const Step&) { w.showWrittenSettings(); }},
});

struct Word {
    std::string_view text;
    double value;
};

constexpr auto dongles =
    std::to_array<Word>({{"A", 0}, {"B", 1}, {"C", 2}, {"D", 3}, {"E", 4}, {"F", 5}});
constexpr auto switches = std::to_array<Word>({{"on", 1}, {"off", 0}});
constexpr auto presses = std::to_array<Word>({{"down", 1}, {"up", 0}});
constexpr auto hooks = std::to_array<Word>({{"activate", 1}, {"deactivate", 0}});
constexpr auto buttons = std::to_array<Word>({{"left", 0}, {"right", 1}, {"other", 2}});
constexpr auto settingNames = std::to_array<Word>({{"cornerSlam", 0},
                                                   {"autoConnect", 1},
                                                   {"autoCapture", 2},
                                                   {"hudEnabled", 3},
                                                   {"allowSharedEdges", 4}});
constexpr auto powers = std::to_array<Word>({{"unknown", 0},
                                             {"resetting", 1},
                                             {"unsupported", 2},
                                             {"unauthorized", 3},
                                             {"off", 4},
                                             {"on", 5}});
constexpr auto mediaKeys =
    std::to_array<Word>({{"soundUp", 0}, {"mute", 7}, {"eject", 14}, {"play", 16}, {"next", 17}});
/// Others by their host key code.
constexpr auto keys = std::to_array<Word>({{"a", 0},
                                           {"b", 11},
                                           {"c", 8},
                                           {"d", 2},
                                           {"e", 14},
                                           {"f", 3},
                                           {"g", 5},
                                           {"h", 4},
                                           {"space", 49},
                                           {"f13", 105},
                                           {"command", 55},
                                           {"shift", 56},
                                           {"capsLock", 57},
                                           {"option", 58},
                                           {"control", 59},
                                           {"rightCommand", 54},
                                           {"rightShift", 60},
                                           {"rightOption", 61},
                                           {"rightControl", 62}});
constexpr auto flagNames = std::to_array<Word>({{"caps", EventFlags::alphaShift},
                                                {"shift", EventFlags::shift},
                                                {"ctrl", EventFlags::control},
                                                {"opt", EventFlags::option},
                                                {"cmd", EventFlags::command},
                                                {"none", 0}});

std::span<const Word> words(std::string_view placeholder) {
    if (placeholder == "DONGLE") return dongles;
    if (placeholder == "SWITCH") return switches;
    if (placeholder == "PRESS") return presses;
    if (placeholder == "HOOK") return hooks;
    if (placeholder == "BUTTON") return buttons;
    if (placeholder == "SETTING") return settingNames;
    if (placeholder == "POWER") return powers;
    if (placeholder == "MEDIA") return mediaKeys;
    if (placeholder == "KEY") return keys;
    return {};
}

bool isPlaceholder(std::string_view word) {
    return word.size() > 1 &&
           std::ranges::all_of(word, [](char c) { return c >= 'A' && c <= 'Z'; });
}

std::optional<double> number(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = error == std::errc{} && end == text.data() + text.size();
    return whole ? std::optional{value} : std::nullopt;
}

std::string text(double number) {
    std::array<char, 400> digits{}; // as many as any double has
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                   std::chars_format::fixed);
    return {digits.data(), end.ptr};
}

std::optional<double> find(std::span<const Word> list, std::string_view word) {
    const auto it = std::ranges::find(list, word, &Word::text);
    return it != list.end() ? std::optional{it->value} : std::nullopt;
}

std::optional<double> flags(std::string_view text) {
    std::uint64_t mask = 0;
    while (!text.empty()) {
        const auto plus = std::min(text.find('+'), text.size());
        const auto flag = find(flagNames, text.substr(0, plus));
        if (!flag) return std::nullopt;
        mask |= static_cast<std::uint64_t>(*flag);
        text.remove_prefix(std::min(plus + 1, text.size()));
    }
    return static_cast<double>(mask);
}

std::optional<double> read(std::string_view placeholder, std::string_view word) {
    if (placeholder == "FLAGS") return flags(word);
    if (placeholder == "NUMBER") return number(word);
    if (placeholder == "TIME") {
        const bool milliseconds = word.ends_with("ms");
        if (!milliseconds && !word.ends_with('s')) return std::nullopt;
        const auto value = number(word.substr(0, word.size() - (milliseconds ? 2 : 1)));
        return value && milliseconds ? std::optional{*value / 1000} : value;
    }
    const auto named = find(words(placeholder), word);
    return named || placeholder != "KEY" ? named : number(word);
}

std::string written(std::string_view placeholder, double value) {
    if (placeholder == "TIME") return text(value) + 's';
    if (placeholder == "FLAGS") {
        std::string result;
        for (const auto& flag : flagNames)
            if (static_cast<std::uint64_t>(value) & static_cast<std::uint64_t>(flag.value))
                result += (result.empty() ? "" : "+") + std::string{flag.text};
        return result.empty() ? "none" : result;
    }
    const auto list = words(placeholder);
    const auto it = std::ranges::find(list, value, &Word::value);
    return it != list.end() ? std::string{it->text} : text(value);
}

/// Words between blanks; a text in quotation marks is one.
std::vector<std::string> split(std::string_view line) {
    std::vector<std::string> result;
    bool inWord = false, inQuotes = false;
    for (const char c : line) {
        if (c == '"') inQuotes = !inQuotes;
        const bool blank = c == ' ' && !inQuotes;
        if (!blank && !inWord) result.emplace_back();
        inWord = !blank;
        if (!blank && c != '"') result.back() += c;
    }
    return result;
}

std::optional<Step> fits(std::size_t row, const std::vector<std::string>& line) {
    const auto pattern = split(commands.at(row).pattern);
    if (pattern.size() != line.size()) return std::nullopt;
    Step step{.command = row};
    auto nextNumber = step.numbers.begin();
    auto nextText = step.texts.begin();
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (!isPlaceholder(pattern[i])) {
            if (pattern[i] != line[i]) return std::nullopt;
        } else if (pattern[i] == "TEXT") {
            *nextText++ = line[i];
        } else if (const auto value = read(pattern[i], line[i])) {
            *nextNumber++ = *value;
        } else {
            return std::nullopt;
        }
    }
    return step;
}

} // namespace

std::optional<Step> parse(std::string_view line) {
    const auto found = split(line);
    for (std::size_t row = 0; row < commands.size(); ++row)
        if (auto step = fits(row, found)) return step;
    return std::nullopt;
}

std::string text(const Step& step) {
    std::string line;
    auto nextNumber = step.numbers.begin();
    auto nextText = step.texts.begin();
    for (const auto& word : split(commands.at(step.command).pattern)) {
        if (!line.empty()) line += ' ';
        if (word == "TEXT")
            line += nextText->find(' ') != std::string::npos || nextText->empty()
                        ? '"' + *nextText + '"'
                        : *nextText,
                ++nextText;
        else
            line += isPlaceholder(word) ? written(word, *nextNumber++) : word;
    }
    return line;
}

void perform(const Step& step, World& world) {
    commands.at(step.command).run(world, step);
    world.clock.settle();
}

bool isArrangement(const Step& step) {
    return commands.at(step.command).arranges;
}

std::size_t command(std::string_view pattern) {
    const auto it = std::ranges::find(commands, pattern, &Command::pattern);
    if (it == commands.end()) std::abort();
    return static_cast<std::size_t>(std::distance(commands.begin(), it));
}

} // namespace quenthisar::Steps
