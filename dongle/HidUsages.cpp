// SPDX-License-Identifier: MIT
#include "HidUsages.h"

#include <algorithm>
#include <array>
#include <linux/input-event-codes.h>

namespace quenthisar::dongle {

namespace {

struct Row {
    std::uint16_t usage;
    const char* name;
    std::uint8_t code;
};

constexpr auto keys = std::to_array<Row>({
    {0x04, "a", KEY_A},
    {0x05, "b", KEY_B},
    {0x06, "c", KEY_C},
    {0x07, "d", KEY_D},
    {0x08, "e", KEY_E},
    {0x09, "f", KEY_F},
    {0x0A, "g", KEY_G},
    {0x0B, "h", KEY_H},
    {0x0C, "i", KEY_I},
    {0x0D, "j", KEY_J},
    {0x0E, "k", KEY_K},
    {0x0F, "l", KEY_L},
    {0x10, "m", KEY_M},
    {0x11, "n", KEY_N},
    {0x12, "o", KEY_O},
    {0x13, "p", KEY_P},
    {0x14, "q", KEY_Q},
    {0x15, "r", KEY_R},
    {0x16, "s", KEY_S},
    {0x17, "t", KEY_T},
    {0x18, "u", KEY_U},
    {0x19, "v", KEY_V},
    {0x1A, "w", KEY_W},
    {0x1B, "x", KEY_X},
    {0x1C, "y", KEY_Y},
    {0x1D, "z", KEY_Z},
    {0x1E, "1", KEY_1},
    {0x1F, "2", KEY_2},
    {0x20, "3", KEY_3},
    {0x21, "4", KEY_4},
    {0x22, "5", KEY_5},
    {0x23, "6", KEY_6},
    {0x24, "7", KEY_7},
    {0x25, "8", KEY_8},
    {0x26, "9", KEY_9},
    {0x27, "0", KEY_0},
    {0x28, "enter", KEY_ENTER},
    {0x29, "escape", KEY_ESC},
    {0x2A, "backspace", KEY_BACKSPACE},
    {0x2B, "tab", KEY_TAB},
    {0x2C, "space", KEY_SPACE},
    {0x2D, "minus", KEY_MINUS},
    {0x2E, "equal", KEY_EQUAL},
    {0x2F, "left-bracket", KEY_LEFTBRACE},
    {0x30, "right-bracket", KEY_RIGHTBRACE},
    {0x31, "backslash", KEY_BACKSLASH},
    {0x33, "semicolon", KEY_SEMICOLON},
    {0x34, "apostrophe", KEY_APOSTROPHE},
    {0x35, "grave", KEY_GRAVE},
    {0x36, "comma", KEY_COMMA},
    {0x37, "period", KEY_DOT},
    {0x38, "slash", KEY_SLASH},
    {0x39, "caps-lock", KEY_CAPSLOCK},
    {0x3A, "f1", KEY_F1},
    {0x3B, "f2", KEY_F2},
    {0x3C, "f3", KEY_F3},
    {0x3D, "f4", KEY_F4},
    {0x3E, "f5", KEY_F5},
    {0x3F, "f6", KEY_F6},
    {0x40, "f7", KEY_F7},
    {0x41, "f8", KEY_F8},
    {0x42, "f9", KEY_F9},
    {0x43, "f10", KEY_F10},
    {0x44, "f11", KEY_F11},
    {0x45, "f12", KEY_F12},
    {0x49, "insert", KEY_INSERT},
    {0x4A, "home", KEY_HOME},
    {0x4B, "page-up", KEY_PAGEUP},
    {0x4C, "delete", KEY_DELETE},
    {0x4D, "end", KEY_END},
    {0x4E, "page-down", KEY_PAGEDOWN},
    {0x4F, "right", KEY_RIGHT},
    {0x50, "left", KEY_LEFT},
    {0x51, "down", KEY_DOWN},
    {0x52, "up", KEY_UP},
});

constexpr auto consumerKeys = std::to_array<Row>({
    {0x6F, "brightness-up", KEY_BRIGHTNESSUP},
    {0x70, "brightness-down", KEY_BRIGHTNESSDOWN},
    {0xB3, "fast-forward", KEY_FASTFORWARD},
    {0xB4, "rewind", KEY_REWIND},
    {0xB5, "next-track", KEY_NEXTSONG},
    {0xB6, "previous-track", KEY_PREVIOUSSONG},
    {0xCD, "play-pause", KEY_PLAYPAUSE},
    {0xE2, "mute", KEY_MUTE},
    {0xE9, "volume-up", KEY_VOLUMEUP},
    {0xEA, "volume-down", KEY_VOLUMEDOWN},
});

constexpr bool isSorted(const auto& rows) {
    return std::ranges::adjacent_find(rows, std::ranges::greater_equal{}, &Row::usage) ==
           rows.end();
}
static_assert(isSorted(keys) && isSorted(consumerKeys));

const Row* find(const auto& rows, std::uint16_t usage) {
    const auto it = std::ranges::lower_bound(rows, usage, {}, &Row::usage);
    return it != rows.end() && it->usage == usage ? &*it : nullptr;
}

std::string nameOf(const Row* row, unsigned usage) {
    return row != nullptr ? row->name : hexByte(usage);
}

std::optional<std::uint8_t> codeOf(const Row* row) {
    return row != nullptr ? std::optional{row->code} : std::nullopt;
}

} // namespace

std::string keyName(std::uint8_t usage) {
    return nameOf(find(keys, usage), usage);
}

std::optional<std::uint8_t> keyCode(std::uint8_t usage) {
    return codeOf(find(keys, usage));
}

std::string consumerName(std::uint16_t usage) {
    return nameOf(find(consumerKeys, usage), usage);
}

std::optional<std::uint8_t> consumerKeyCode(std::uint16_t usage) {
    return codeOf(find(consumerKeys, usage));
}

std::uint8_t modifierKeyCode(unsigned bit) {
    constexpr std::array<std::uint8_t, 4> codes{KEY_LEFTCTRL, KEY_LEFTSHIFT, KEY_LEFTALT,
                                                KEY_LEFTMETA};
    return codes[bit];
}

std::string hexByte(unsigned value) {
    constexpr auto* digits = "0123456789ABCDEF";
    std::string text;
    for (; value != 0 || text.size() < 2; value >>= 4U)
        text.insert(text.begin(), digits[value & 15U]);
    return "0x" + text;
}

} // namespace quenthisar::dongle
