// SPDX-License-Identifier: MIT
#include "Linux/HostKeys.h"

#include <algorithm>
#include <array>

namespace quenthisar {

namespace {

struct Row {
    std::uint32_t kernelCode;
    std::uint16_t hostCode;
};

constexpr std::uint32_t firstXKeyCode = 8;

template <std::size_t count>
constexpr std::array<Row, count> byKernelCode(std::array<Row, count> rows) {
    std::ranges::sort(rows, {}, &Row::kernelCode);
    return rows;
}

// In the order of a keyboard's rows.
constexpr auto keys = byKernelCode(std::to_array<Row>({
    {1, 53},    // Escape
    {59, 122},  // F1
    {60, 120},  // F2
    {61, 99},   // F3
    {62, 118},  // F4
    {63, 96},   // F5
    {64, 97},   // F6
    {65, 98},   // F7
    {66, 100},  // F8
    {67, 101},  // F9
    {68, 109},  // F10
    {87, 103},  // F11
    {88, 111},  // F12
    {41, 50},   // Grave accent
    {2, 18},    // 1
    {3, 19},    // 2
    {4, 20},    // 3
    {5, 21},    // 4
    {6, 23},    // 5
    {7, 22},    // 6
    {8, 26},    // 7
    {9, 28},    // 8
    {10, 25},   // 9
    {11, 29},   // 0
    {12, 27},   // Minus
    {13, 24},   // Equal
    {14, 51},   // Backspace
    {15, 48},   // Tab
    {16, 12},   // Q
    {17, 13},   // W
    {18, 14},   // E
    {19, 15},   // R
    {20, 17},   // T
    {21, 16},   // Y
    {22, 32},   // U
    {23, 34},   // I
    {24, 31},   // O
    {25, 35},   // P
    {26, 33},   // Left bracket
    {27, 30},   // Right bracket
    {28, 36},   // Return
    {30, 0},    // A
    {31, 1},    // S
    {32, 2},    // D
    {33, 3},    // F
    {34, 5},    // G
    {35, 4},    // H
    {36, 38},   // J
    {37, 40},   // K
    {38, 37},   // L
    {39, 41},   // Semicolon
    {40, 39},   // Quote
    {43, 42},   // Backslash
    {44, 6},    // Z
    {45, 7},    // X
    {46, 8},    // C
    {47, 9},    // V
    {48, 11},   // B
    {49, 45},   // N
    {50, 46},   // M
    {51, 43},   // Comma
    {52, 47},   // Period
    {53, 44},   // Slash
    {57, 49},   // Space
    {110, 114}, // Insert -> Help
    {102, 115}, // Home
    {104, 116}, // Page Up
    {111, 117}, // Delete
    {107, 119}, // End
    {109, 121}, // Page Down
    {106, 124}, // Right
    {105, 123}, // Left
    {108, 125}, // Down
    {103, 126}, // Up
}));
static_assert(keys.size() == 74);
static_assert(std::ranges::adjacent_find(keys, {}, &Row::kernelCode) == keys.end());

constexpr auto mediaKeys = byKernelCode(std::to_array<Row>({
    {115, 0},  // Volume up
    {114, 1},  // Volume down
    {225, 2},  // Brightness up
    {224, 3},  // Brightness down
    {113, 7},  // Mute
    {164, 16}, // Play and pause
    {200, 16}, // Play (CD)
    {201, 16}, // Pause (CD)
    {207, 16}, // Play
    {163, 17}, // Next
    {165, 18}, // Previous
    {208, 19}, // Fast forward
    {168, 20}, // Rewind
}));
static_assert(std::ranges::adjacent_find(mediaKeys, {}, &Row::kernelCode) == mediaKeys.end());

// X calls the microphone's key F20 (190) and the touchpad's F21 to F23.
constexpr auto swallowedKeys = std::to_array<std::uint32_t>({
    116, // Power
    142, // Sleep
    143, // Wake up
    160, // Close (CD)
    161, // Eject
    162, // Eject or close
    166, // Stop
    167, // Record
    190, // Microphone mute
    191, // Touchpad toggle
    192, // Touchpad on
    193, // Touchpad off
    226, // Media
    227, // Video mode
    228, // Keyboard illumination toggle
    229, // Keyboard illumination down
    230, // Keyboard illumination up
    236, // Battery
    237, // Bluetooth
    238, // Wireless network
    243, // Brightness cycle
    244, // Brightness automatic
    247, // Radio off
});
static_assert(std::ranges::is_sorted(swallowedKeys));

const Row* find(const auto& rows, std::uint32_t kernelCode) {
    const auto it = std::ranges::lower_bound(rows, kernelCode, {}, &Row::kernelCode);
    return it != rows.end() && it->kernelCode == kernelCode ? &*it : nullptr;
}

} // namespace

HostKey hostKey(std::uint32_t xKeyCode) {
    using Kind = HostKey::Kind;
    const auto kernelCode = xKeyCode - firstXKeyCode;
    if (const auto* row = find(keys, kernelCode)) return {Kind::key, row->hostCode};
    if (const auto* row = find(mediaKeys, kernelCode)) return {Kind::media, row->hostCode};
    if (std::ranges::binary_search(swallowedKeys, kernelCode)) return {Kind::swallowed, 0};
    return {Kind::key, unknownKeyCode};
}

} // namespace quenthisar
