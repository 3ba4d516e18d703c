// SPDX-License-Identifier: MIT
#include "Capture/TargetMacro.h"

#include "Support/Text.h"

#include <algorithm>
#include <array>
#include <string>

namespace quenthisar::TargetMacro {

namespace {

constexpr Seconds releaseDelay{0.05};

struct Word {
    std::string_view text;
    std::uint8_t value;
};

constexpr auto modifierWords = std::to_array<Word>({
    {"ctrl", 0x01},
    {"control", 0x01},
    {"shift", 0x02},
    {"alt", 0x04},
    {"opt", 0x04},
    {"option", 0x04},
    {"cmd", 0x08},
    {"command", 0x08},
    {"win", 0x08},
    {"windows", 0x08},
    {"gui", 0x08},
    {"meta", 0x08},
    {"super", 0x08},
});

// Single letters and digits have a rule of their own.
constexpr auto keyWords = std::to_array<Word>({
    {"enter", 0x28},  {"return", 0x28},
    {"esc", 0x29},    {"escape", 0x29},
    {"delete", 0x2A}, {"backspace", 0x2A},
    {"tab", 0x2B},    {"space", 0x2C},
    {"del", 0x4C},    {"forwarddelete", 0x4C},
    {"home", 0x4A},   {"end", 0x4D},
    {"pageup", 0x4B}, {"pagedown", 0x4E},
    {"left", 0x50},   {"right", 0x4F},
    {"up", 0x52},     {"down", 0x51},
    {"f1", 0x3A},     {"f2", 0x3B},
    {"f3", 0x3C},     {"f4", 0x3D},
    {"f5", 0x3E},     {"f6", 0x3F},
    {"f7", 0x40},     {"f8", 0x41},
    {"f9", 0x42},     {"f10", 0x43},
    {"f11", 0x44},    {"f12", 0x45},
});

template <class Words>
std::optional<std::uint8_t> find(const Words& words, std::string_view text) {
    const auto it = std::ranges::find(words, text, &Word::text);
    return it != words.end() ? std::optional{it->value} : std::nullopt;
}

std::optional<std::uint8_t> keyName(std::string_view word) {
    if (word.size() == 1) {
        const char c = word.front();
        if (c >= 'a' && c <= 'z') return static_cast<std::uint8_t>(c - 93);
        if (c >= '1' && c <= '9') return static_cast<std::uint8_t>(c - 19);
        if (c == '0') return std::uint8_t{0x27};
    }
    return find(keyWords, word);
}

} // namespace

std::optional<Chord> parse(std::string_view text) {
    const std::string lower = Text::lowercased(text);
    std::uint8_t modifiers = 0;
    std::optional<std::uint8_t> key;
    for (std::string_view rest = lower; !rest.empty();) {
        const auto plus = std::min(rest.find('+'), rest.size());
        const auto word = Text::trimmedOfBlanks(rest.substr(0, plus));
        rest.remove_prefix(std::min(plus + 1, rest.size()));
        if (word.empty()) continue;
        if (const auto bit = find(modifierWords, word))
            modifiers |= *bit;
        else
            key = keyName(word);
    }
    return key ? std::optional{Chord{modifiers, *key}} : std::nullopt;
}

void send(std::string_view text, const Uuid& to, DongleManager& via, MainQueue& queue) {
    const auto chord = parse(text);
    if (!chord) return;
    via.send(Report::keyboard(chord->modifiers, {{chord->keycode}}), to);
    queue.after(releaseDelay, [&via, to] { via.send(Report::allKeysUp(), to); });
}

} // namespace quenthisar::TargetMacro
