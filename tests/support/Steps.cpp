// SPDX-License-Identifier: MIT
#include "support/Steps.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <map>
#include <vector>

namespace quenthisar::Steps {

namespace {

/// A step and where it is done.
struct Deed {
    World& w;
    const Step& s;

    bool isOn(std::size_t place = 0) const { return s.numbers.at(place) != 0; }
    std::int64_t whole(std::size_t place = 0) const {
        return static_cast<std::int64_t>(s.numbers.at(place));
    }
    std::size_t index(std::size_t place = 0) const {
        return static_cast<std::size_t>(whole(place));
    }
    const Uuid& dongle() const { return World::dongleID(index()); }
    FakePeripheral& peripheral() const { return w.peripheral(index()); }
    DongleManager& manager() const { return *w.app().dongleManager; }
    EventTapController& controller() const { return *w.app().eventTap; }
    AppState& state() const { return w.state(); }
    const std::string& text() const { return s.texts[0]; }
    Uuid profile() const { return w.profile(text()); }

    /// Of the text's place, such as "left|D1".
    void bind(const std::optional<Uuid>& to) const {
        const std::string_view key = text();
        const auto bar = std::min(key.find('|'), key.size());
        if (const auto edge = edgeFrom(key.substr(0, bar)))
            state().setBinding(key.substr(bar + 1), *edge, to);
    }
    void changeProfile(std::string Profile::*field) const {
        state().updateProfile(profile(), [&](Profile& p) { p.*field = s.texts[1]; });
    }
    /// With the chord.
    void pressHotkey(std::uint32_t keyCode, std::uint32_t moreModifiers = 0) const {
        w.pressHotkey(keyCode, HotkeyModifiers::control | HotkeyModifiers::option |
                                   HotkeyModifiers::command | moreModifiers);
    }
    /// Of the digit's key on the main keyboard.
    void pressDigitHotkey(std::uint32_t moreModifiers = 0) const {
        constexpr std::array<std::uint32_t, 9> keyCodes{18, 19, 20, 21, 23, 22, 26, 28, 25};
        pressHotkey(keyCodes.at(index() - 1), moreModifiers);
    }
};

Published<bool>& setting(AppState& state, std::size_t number) {
    return *std::array{&state.cornerSlam, &state.autoConnect, &state.autoCapture, &state.hudEnabled,
                       &state.allowSharedEdges}
                .at(number);
}

struct Command {
    std::string_view pattern; // words in capitals are placeholders
    void (*run)(Deed);
    bool arranges = false;
};

/// The first one that a line fits counts.
constexpr auto commands = std::to_array<Command>({
    // The host: displays, in global display coordinates, and input.
    {"screen TEXT NUMBER NUMBER NUMBER NUMBER",
     [](Deed d) {
         const auto& n = d.s.numbers;
         d.w.plug(d.text(), {n[0], n[1], n[2], n[3]});
     }},
    {"unplug TEXT", [](Deed d) { d.w.unplug(d.text()); }},
    {"capture SWITCH", [](Deed d) { d.isOn() ? d.controller().start() : d.controller().stop(); }},
    {"tap refused", [](Deed d) { d.w.taps.refuses = true; }},
    {"tap granted", [](Deed d) { d.w.taps.refuses = false; }},
    {"tap disabled by time-out", [](Deed d) { d.w.disableTap(EventType::tapDisabledByTimeout); }},
    {"tap disabled by user", [](Deed d) { d.w.disableTap(EventType::tapDisabledByUserInput); }},
    {"move NUMBER NUMBER",
     [](Deed d) {
         d.w.moveTo({d.s.numbers[0], d.s.numbers[1]});
     }},
    {"motion NUMBER NUMBER", [](Deed d) { d.w.moveBy(d.whole(0), d.whole(1)); }},
    {"PRESS BUTTON", [](Deed d) { d.w.button(d.index(1), d.isOn()); }},
    {"key PRESS KEY", [](Deed d) { d.w.key(d.whole(1), d.isOn()); }},
    {"flags FLAGS", [](Deed d) { d.w.setFlags(d.index()); }},
    {"scroll NUMBER", [](Deed d) { d.w.scroll(d.whole()); }},
    {"media MEDIA PRESS", [](Deed d) { d.w.mediaKey(d.whole(), d.isOn(1)); }},
    {"advance TIME",
     [](Deed d) {
         d.w.clock.advance(std::chrono::round<VirtualClock::Nanoseconds>(Seconds{d.s.numbers[0]}));
     }},

    // The air.
    {"dongle DONGLE connected",
     [](Deed d) {
         d.w.discover(d.index());
         d.manager().connect(d.dongle());
     },
     true},
    {"dongle DONGLE seen", [](Deed d) { d.w.discover(d.index()); }},
    {"dongle DONGLE seen as TEXT",
     [](Deed d) {
         d.peripheral().peripheralName = d.text();
         d.w.discover(d.index());
     }},
    {"dongle DONGLE seen with a link",
     [](Deed d) {
         d.peripheral().link = PeripheralState::connected;
         d.w.discover(d.index());
     }},
    {"link of DONGLE waits", [](Deed d) { d.peripheral().answersConnect = false; }},
    {"link of DONGLE up", [](Deed d) { d.w.linkUp(d.index()); }},
    {"link of DONGLE fails", [](Deed d) { d.w.failLink(d.index()); }},
    {"probe of DONGLE waits", [](Deed d) { d.peripheral().answersProbe = false; }},
    {"probe of DONGLE answered", [](Deed d) { d.w.answerProbes(d.index(), std::nullopt); }},
    {"probe of DONGLE refused", [](Deed d) { d.w.answerProbes(d.index(), "refused"); }},
    {"drop DONGLE", [](Deed d) { d.w.drop(d.index()); }},
    {"power POWER",
     [](Deed d) {
         d.w.app();
         d.w.central.setPower(static_cast<CentralState>(d.index()));
     }},

    // The user and the user's settings. A hotkey's modifiers are input, above.
    {"hotkey V", [](Deed d) { d.pressHotkey(9); }},
    {"hotkey NUMBER", [](Deed d) { d.pressDigitHotkey(); }},
    {"hotkey shift NUMBER", [](Deed d) { d.pressDigitHotkey(HotkeyModifiers::shift); }},
    {"clipboard TEXT", [](Deed d) { d.w.pasteboard.text = d.text(); }},
    {"watch panels", [](Deed d) { d.w.watchPanels(); }},
    {"connect DONGLE", [](Deed d) { d.manager().connect(d.dongle()); }},
    {"disconnect DONGLE", [](Deed d) { d.manager().disconnect(d.dongle()); }},
    {"identify DONGLE", [](Deed d) { d.manager().identify(d.dongle()); }},
    {"take over DONGLE", [](Deed d) { d.controller().takeOver(d.dongle()); }},
    {"chord TEXT DONGLE", [](Deed d) { d.w.sendChord(d.text(), d.index()); }},
    {"bind TEXT DONGLE", [](Deed d) { d.bind(d.dongle()); }},
    {"unbind TEXT", [](Deed d) { d.bind(std::nullopt); }},
    {"profile TEXT", [](Deed d) { d.state().addProfile(d.text()); }},
    {"profile TEXT activate TEXT", [](Deed d) { d.changeProfile(&Profile::activateCommand); }},
    {"profile TEXT deactivate TEXT", [](Deed d) { d.changeProfile(&Profile::deactivateCommand); }},
    {"profile TEXT sends TEXT", [](Deed d) { d.changeProfile(&Profile::targetCommand); }},
    {"switch TEXT", [](Deed d) { d.state().switchProfile(d.profile()); }},
    {"delete TEXT", [](Deed d) { d.state().deleteProfile(d.profile()); }},
    {"nickname DONGLE TEXT", [](Deed d) { d.state().setNickname(d.text(), d.dongle()); }},
    {"sensitivity DONGLE NUMBER",
     [](Deed d) { d.state().setSensitivity(d.s.numbers[1], d.dongle()); }},
    {"set SETTING SWITCH", [](Deed d) { setting(d.state(), d.index()) = d.isOn(1); }},
    {"show settings", [](Deed d) { d.w.showWrittenSettings(); }},
});

struct Word {
    std::string text;
    double value;
};

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

std::optional<double> number(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = error == std::errc{} && end == text.data() + text.size();
    return whole ? std::optional{value} : std::nullopt;
}

/// What may stand for a placeholder. Other keys stand by their host key code.
const std::vector<Word>& words(std::string_view placeholder) {
    constexpr std::pair<std::string_view, std::string_view> lists[] = {
        {"DONGLE", "A=0 B=1 C=2 D=3 E=4 F=5"},
        {"SWITCH", "on=1 off=0"},
        {"PRESS", "down=1 up=0"},
        {"BUTTON", "left=0 right=1 other=2"},
        {"SETTING", "cornerSlam=0 autoConnect=1 autoCapture=2 hudEnabled=3 allowSharedEdges=4"},
        {"POWER", "unknown=0 resetting=1 unsupported=2 unauthorized=3 off=4 on=5"},
        {"MEDIA", "soundUp=0 mute=7 eject=14 play=16 next=17"},
        {"KEY", "a=0 b=11 c=8 d=2 e=14 f=3 g=5 h=4 space=49 f13=105 command=55 shift=56 "
                "capsLock=57 option=58 control=59 rightCommand=54 rightShift=60 rightOption=61 "
                "rightControl=62"},
    };
    static const auto all = [&lists] {
        std::map<std::string, std::vector<Word>, std::less<>> result;
        for (const auto& [name, list] : lists)
            for (const auto& word : split(list)) {
                const auto sign = word.find('=');
                result[std::string{name}].push_back(
                    {word.substr(0, sign), number(word.substr(sign + 1)).value()});
            }
        result["FLAGS"] = {{"caps", EventFlags::alphaShift}, {"shift", EventFlags::shift},
                           {"ctrl", EventFlags::control},    {"opt", EventFlags::option},
                           {"cmd", EventFlags::command},     {"none", 0}};
        return result;
    }();
    static const std::vector<Word> none;
    const auto it = all.find(placeholder);
    return it != all.end() ? it->second : none;
}

bool isPlaceholder(std::string_view word) {
    return word.size() > 1 &&
           std::ranges::all_of(word, [](char c) { return c >= 'A' && c <= 'Z'; });
}

std::string text(double number) {
    std::array<char, 400> digits{}; // as many as any double has
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                   std::chars_format::fixed);
    return {digits.data(), end.ptr};
}

std::optional<double> find(std::string_view placeholder, std::string_view word) {
    const auto& list = words(placeholder);
    const auto it = std::ranges::find(list, word, &Word::text);
    return it != list.end() ? std::optional{it->value} : std::nullopt;
}

std::optional<double> flags(std::string_view text) {
    std::uint64_t mask = 0;
    while (!text.empty()) {
        const auto plus = std::min(text.find('+'), text.size());
        const auto flag = find("FLAGS", text.substr(0, plus));
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
    const auto named = find(placeholder, word);
    return named || placeholder != "KEY" ? named : number(word);
}

std::string written(std::string_view placeholder, double value) {
    if (placeholder == "TIME") return text(value) + 's';
    if (placeholder == "FLAGS") {
        std::string result;
        for (const auto& flag : words(placeholder))
            if (static_cast<std::uint64_t>(value) & static_cast<std::uint64_t>(flag.value))
                result += (result.empty() ? "" : "+") + flag.text;
        return result.empty() ? "none" : result;
    }
    const auto& list = words(placeholder);
    const auto it = std::ranges::find(list, value, &Word::value);
    return it != list.end() ? it->text : text(value);
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
    commands.at(step.command).run({world, step});
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
