// SPDX-License-Identifier: MIT
#include "Support/Uuid.h"

#include <cstring>
#include <random>

namespace quenthisar {

namespace {

constexpr std::size_t textLength = 36;

constexpr bool isHyphenPlace(std::size_t place) {
    return place == 8 || place == 13 || place == 18 || place == 23;
}

constexpr int digitValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

} // namespace

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != textLength) return std::nullopt;
    Uuid result;
    std::size_t digits = 0;
    for (std::size_t place = 0; place < textLength; ++place) {
        if (isHyphenPlace(place)) {
            if (text[place] != '-') return std::nullopt;
            continue;
        }
        const int value = digitValue(text[place]);
        if (value < 0) return std::nullopt;
        auto& byte = result.bytes[digits / 2];
        byte = static_cast<std::uint8_t>(byte << 4 | value);
        ++digits;
    }
    return result;
}

Uuid Uuid::random() {
    std::random_device source;
    Uuid result;
    for (auto& byte : result.bytes) byte = static_cast<std::uint8_t>(source());
    result.bytes[6] = static_cast<std::uint8_t>((result.bytes[6] & 0x0F) | 0x40);
    result.bytes[8] = static_cast<std::uint8_t>((result.bytes[8] & 0x3F) | 0x80);
    return result;
}

std::string Uuid::text() const {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    result.reserve(textLength);
    for (const auto byte : bytes) {
        if (isHyphenPlace(result.size())) result += '-';
        result += digits[byte >> 4];
        result += digits[byte & 0x0F];
    }
    return result;
}

} // namespace quenthisar

std::size_t std::hash<quenthisar::Uuid>::operator()(const quenthisar::Uuid& id) const noexcept {
    std::size_t halves[2];
    static_assert(sizeof halves == sizeof id.bytes);
    std::memcpy(halves, id.bytes.data(), sizeof halves);
    return halves[0] ^ (halves[1] * 0x9E3779B97F4A7C15U);
}
