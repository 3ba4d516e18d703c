// SPDX-License-Identifier: MIT
#include "Capture/KeycodeMap.h"

#include "Platform/EventTap.h"
#include "Support/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace quenthisar::KeycodeMap {

namespace {

struct KeyRow {
    std::uint16_t hostCode;
    std::uint8_t usage;
};

constexpr auto keys = std::to_array<KeyRow>({
    {0, 0x04},   // A
    {11, 0x05},  // B
    {8, 0x06},   // C
    {2, 0x07},   // D
    {14, 0x08},  // E
    {3, 0x09},   // F
    {5, 0x0A},   // G
    {4, 0x0B},   // H
    {34, 0x0C},  // I
    {38, 0x0D},  // J
    {40, 0x0E},  // K
    {37, 0x0F},  // L
    {46, 0x10},  // M
    {45, 0x11},  // N
    {31, 0x12},  // O
    {35, 0x13},  // P
    {12, 0x14},  // Q
    {15, 0x15},  // R
    {1, 0x16},   // S
    {17, 0x17},  // T
    {32, 0x18},  // U
    {9, 0x19},   // V
    {13, 0x1A},  // W
    {7, 0x1B},   // X
    {16, 0x1C},  // Y
    {6, 0x1D},   // Z
    {18, 0x1E},  // 1
    {19, 0x1F},  // 2
    {20, 0x20},  // 3
    {21, 0x21},  // 4
    {23, 0x22},  // 5
    {22, 0x23},  // 6
    {26, 0x24},  // 7
    {28, 0x25},  // 8
    {25, 0x26},  // 9
    {29, 0x27},  // 0
    {36, 0x28},  // Return
    {53, 0x29},  // Escape
    {51, 0x2A},  // Delete -> Backspace
    {48, 0x2B},  // Tab
    {49, 0x2C},  // Space
    {27, 0x2D},  // Minus
    {24, 0x2E},  // Equal
    {33, 0x2F},  // Left bracket
    {30, 0x30},  // Right bracket
    {42, 0x31},  // Backslash
    {41, 0x33},  // Semicolon
    {39, 0x34},  // Quote
    {50, 0x35},  // Grave accent
    {43, 0x36},  // Comma
    {47, 0x37},  // Period
    {44, 0x38},  // Slash
    {122, 0x3A}, // F1
    {120, 0x3B}, // F2
    {99, 0x3C},  // F3
    {118, 0x3D}, // F4
    {96, 0x3E},  // F5
    {97, 0x3F},  // F6
    {98, 0x40},  // F7
    {100, 0x41}, // F8
    {101, 0x42}, // F9
    {109, 0x43}, // F10
    {103, 0x44}, // F11
    {111, 0x45}, // F12
    {114, 0x49}, // Help -> Insert
    {115, 0x4A}, // Home
    {116, 0x4B}, // Page Up
    {117, 0x4C}, // Forward Delete
    {119, 0x4D}, // End
    {121, 0x4E}, // Page Down
    {124, 0x4F}, // Right Arrow
    {123, 0x50}, // Left Arrow
    {125, 0x51}, // Down Arrow
    {126, 0x52}, // Up Arrow
});

struct ConsumerRow {
    std::uint16_t keyType;
    std::uint16_t usage;
};

constexpr auto consumerKeys = std::to_array<ConsumerRow>({
    {0, 0xE9},  // Sound up
    {1, 0xEA},  // Sound down
    {2, 0x6F},  // Brightness up
    {3, 0x70},  // Brightness down
    {7, 0xE2},  // Mute
    {16, 0xCD}, // Play
    {17, 0xB5}, // Next
    {18, 0xB6}, // Previous
    {19, 0xB3}, // Fast
    {20, 0xB4}, // Rewind
});

constexpr std::uint8_t shift = 0x02;

struct AsciiRow {
    char character;
    std::uint8_t modifier;
    std::uint8_t usage;
};

// Letters have a rule of their own.
constexpr auto characters = std::to_array<AsciiRow>({
    {'\t', 0, 0x2B},    {'\n', 0, 0x28},    {' ', 0, 0x2C},     {'!', shift, 0x1E},
    {'"', shift, 0x34}, {'#', shift, 0x20}, {'$', shift, 0x21}, {'%', shift, 0x22},
    {'&', shift, 0x24}, {'\'', 0, 0x34},    {'(', shift, 0x26}, {')', shift, 0x27},
    {'*', shift, 0x25}, {'+', shift, 0x2E}, {',', 0, 0x36},     {'-', 0, 0x2D},
    {'.', 0, 0x37},     {'/', 0, 0x38},     {'0', 0, 0x27},     {'1', 0, 0x1E},
    {'2', 0, 0x1F},     {'3', 0, 0x20},     {'4', 0, 0x21},     {'5', 0, 0x22},
    {'6', 0, 0x23},     {'7', 0, 0x24},     {'8', 0, 0x25},     {'9', 0, 0x26},
    {':', shift, 0x33}, {';', 0, 0x33},     {'<', shift, 0x36}, {'=', 0, 0x2E},
    {'>', shift, 0x37}, {'?', shift, 0x38}, {'@', shift, 0x1F}, {'[', 0, 0x2F},
    {'\\', 0, 0x31},    {']', 0, 0x30},     {'^', shift, 0x23}, {'_', shift, 0x2D},
    {'`', 0, 0x35},     {'{', shift, 0x2F}, {'|', shift, 0x31}, {'}', shift, 0x30},
    {'~', shift, 0x35},
});

struct Replacement {
    std::int32_t scalar;
    std::u32string_view text;
};

constexpr auto replacements = std::to_array<Replacement>({
    {'\r', U"\n"},
    {0x201C, U"\""},  // left double quotation mark
    {0x201D, U"\""},  // right double quotation mark
    {0x201E, U"\""},  // double low-9 quotation mark
    {0x2018, U"'"},   // left single quotation mark
    {0x2019, U"'"},   // right single quotation mark
    {0x201A, U"'"},   // single low-9 quotation mark
    {0x2014, U"-"},   // em dash
    {0x2013, U"-"},   // en dash
    {0x2012, U"-"},   // figure dash
    {0x2026, U"..."}, // horizontal ellipsis
    {0x2022, U"*"},   // bullet
    {0x00A0, U" "},   // no-break space
});

/// Of a scalar value, or of a byte of UTF-8.
template <class Character>
constexpr bool isTypeable(Character c) {
    return c == '\t' || c == '\n' || (c >= 32 && c <= 126);
}

/// What is typed in place of the scalars that can't be typed as they are. A text has few different
/// ones, and many of each: they are worked out once.
class Substitutes {
public:
    std::string_view of(std::int32_t scalar) {
        auto& place = places.at(static_cast<std::uint32_t>(scalar) % places.size());
        if (place.scalar != scalar) workOut(place, scalar);
        return place.text;
    }

private:
    struct Place {
        std::int32_t scalar = 0; // has none
        std::string text;
    };

    void workOut(Place& place, std::int32_t scalar) {
        place.scalar = scalar;
        place.text.clear();
        folded.clear();
        const auto it = std::ranges::find(replacements, scalar, &Replacement::scalar);
        if (it != replacements.end())
            folded = it->text;
        else
            Text::appendFolded(scalar, folded);
        for (const char32_t c : folded)
            if (isTypeable(c)) place.text += static_cast<char>(c);
    }

    std::array<Place, 1024> places;
    std::u32string folded;
};

/// The rows as a table that is indexed by `key`, 0 where there is no row. Two rows with one key, or
/// a key outside the table, fail to compile.
template <class Value, std::size_t size, class Row, std::size_t count, class Key>
consteval std::array<Value, size> indexed(const std::array<Row, count>& rows, Key Row::*key,
                                          Value Row::*value) {
    std::array<Value, size> table{};
    for (const auto& row : rows) {
        auto& place = table.at(static_cast<std::size_t>(row.*key));
        if (place != Value{}) throw "two rows for one key";
        place = row.*value;
    }
    return table;
}

constexpr auto usages = indexed<std::uint8_t, 128>(keys, &KeyRow::hostCode, &KeyRow::usage);
constexpr auto consumerUsages =
    indexed<std::uint16_t, 32>(consumerKeys, &ConsumerRow::keyType, &ConsumerRow::usage);

static_assert(keys.size() == 74);
static_assert(consumerKeys.size() == 10);
static_assert(characters.size() == 45);
static_assert(std::ranges::is_sorted(characters, {}, &AsciiRow::character));

} // namespace

std::optional<std::uint8_t> usage(std::uint16_t forKeyCode) {
    if (forKeyCode >= usages.size() || usages[forKeyCode] == 0) return std::nullopt;
    return usages[forKeyCode];
}

std::optional<std::int64_t> consumerUsage(std::int64_t forKeyType) {
    const auto index = static_cast<std::uint64_t>(forKeyType);
    if (index >= consumerUsages.size() || consumerUsages[index] == 0) return std::nullopt;
    return consumerUsages[index];
}

std::uint8_t modifierByte(std::uint64_t from) {
    std::uint8_t byte = 0;
    if (from & EventFlags::control) byte |= 0x01;
    if (from & EventFlags::shift) byte |= 0x02;
    if (from & EventFlags::option) byte |= 0x04;
    if (from & EventFlags::command) byte |= 0x08;
    return byte;
}

std::optional<Keypress> usbKeypress(std::uint8_t forASCII) {
    if (forASCII >= 'a' && forASCII <= 'z')
        return Keypress{0, static_cast<std::uint8_t>(forASCII - 93)};
    if (forASCII >= 'A' && forASCII <= 'Z')
        return Keypress{shift, static_cast<std::uint8_t>(forASCII - 61)};
    const auto it = std::ranges::find(characters, forASCII, [](const AsciiRow& row) {
        return static_cast<std::uint8_t>(row.character);
    });
    if (it == characters.end()) return std::nullopt;
    return Keypress{it->modifier, it->usage};
}

std::vector<std::uint8_t> asciiBytes(std::string_view from, std::size_t limit) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(std::min(from.size(), limit));
    Substitutes substitutes;
    while (!from.empty() && bytes.size() < limit) {
        // Most of a text can be typed as it is, and is copied in one piece.
        const auto piece = from.substr(0, limit - bytes.size());
        const auto end = std::ranges::find_if_not(piece, [](char c) { return isTypeable(c); });
        bytes.insert(bytes.end(), piece.begin(), end);
        from.remove_prefix(static_cast<std::size_t>(end - piece.begin()));
        if (end == piece.end()) continue;

        const auto scalar = Text::takeScalar(from);
        if (scalar == '\r' && from.starts_with('\n')) from.remove_prefix(1);
        const auto substitute = substitutes.of(scalar).substr(0, limit - bytes.size());
        bytes.insert(bytes.end(), substitute.begin(), substitute.end());
    }
    return bytes;
}

} // namespace quenthisar::KeycodeMap
