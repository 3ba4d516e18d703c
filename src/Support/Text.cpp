// SPDX-License-Identifier: MIT
#include "Support/Text.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utf8proc.h>

namespace quenthisar::Text {

namespace {

/// The scalar at the start of `text`, and how many bytes it takes; -1 and 1 where there is none.
struct Decoded {
    std::int32_t scalar;
    std::size_t length;
};

Decoded decodeFirst(std::string_view text) {
    utf8proc_int32_t scalar = -1;
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const auto length =
        utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(text.size()), &scalar);
    if (length <= 0) return {-1, 1};
    return {scalar, static_cast<std::size_t>(length)};
}

bool isBlank(std::int32_t scalar) {
    return scalar == '\t' || (scalar >= 0 && utf8proc_category(scalar) == UTF8PROC_CATEGORY_ZS);
}

bool isWhitespaceOrNewline(std::int32_t scalar) {
    if (isBlank(scalar) || (scalar >= 0x0A && scalar <= 0x0D) || scalar == 0x85) return true;
    if (scalar < 0) return false;
    const auto category = utf8proc_category(scalar);
    return category == UTF8PROC_CATEGORY_ZL || category == UTF8PROC_CATEGORY_ZP;
}

bool breaksTheLine(std::int32_t scalar) {
    const auto category = utf8proc_category(scalar);
    return category == UTF8PROC_CATEGORY_CC || category == UTF8PROC_CATEGORY_ZL ||
           category == UTF8PROC_CATEGORY_ZP;
}

/// Embeddings, overrides and isolates, and their ends.
bool turnsTheDirection(std::int32_t scalar) {
    return (scalar >= 0x202A && scalar <= 0x202E) || (scalar >= 0x2066 && scalar <= 0x2069);
}

bool isMark(const utf8proc_property_t& property) {
    return property.category >= UTF8PROC_CATEGORY_MN && property.category <= UTF8PROC_CATEGORY_ME;
}

template <class Predicate>
std::string_view trimmed(std::string_view text, Predicate isTrimmed) {
    std::size_t begin = text.size(), end = 0;
    for (std::size_t at = 0; at < text.size();) {
        const auto [scalar, length] = decodeFirst(text.substr(at));
        if (!isTrimmed(scalar)) {
            begin = std::min(begin, at);
            end = at + length;
        }
        at += length;
    }
    return begin < end ? text.substr(begin, end - begin) : std::string_view{};
}

void append(std::string& text, std::int32_t scalar) {
    std::array<utf8proc_uint8_t, 4> bytes{};
    const auto length = utf8proc_encode_char(scalar, bytes.data());
    text.append(bytes.begin(), bytes.begin() + length);
}

} // namespace

std::int32_t takeScalar(std::string_view& text) {
    const auto [scalar, length] = decodeFirst(text);
    text.remove_prefix(length);
    return scalar;
}

std::string_view trimmedOfBlanks(std::string_view text) {
    return trimmed(text, isBlank);
}

std::string_view trimmedOfWhitespaceAndNewlines(std::string_view text) {
    return trimmed(text, isWhitespaceOrNewline);
}

std::string onOneLine(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto [scalar, length] = decodeFirst(text);
        // As it is, it might make a mark with what comes to stand beside it.
        if (scalar < 0)
            result += "\xEF\xBF\xBD";
        else if (breaksTheLine(scalar))
            result += ' ';
        else if (!turnsTheDirection(scalar))
            result += text.substr(0, length);
        text.remove_prefix(length);
    }
    return result;
}

std::string lowercased(std::string_view text) {
    constexpr std::int32_t capitalIWithDot = 0x130, combiningDotAbove = 0x307;
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto [scalar, length] = decodeFirst(text);
        if (scalar < 0) {
            result += text.front();
        } else if (scalar == capitalIWithDot) {
            // The one letter that becomes two scalars whatever stands around it.
            result += 'i';
            append(result, combiningDotAbove);
        } else {
            append(result, utf8proc_tolower(scalar));
        }
        text.remove_prefix(length);
    }
    return result;
}

void appendFolded(std::int32_t scalar, std::u32string& output) {
    if (scalar < 0) return;
    if (scalar < 0x80) {
        output += static_cast<char32_t>(scalar);
        return;
    }
    const auto* property = utf8proc_get_property(scalar);
    // Most of the world's letters are no others in disguise.
    if (property->decomp_seqindex == std::numeric_limits<utf8proc_uint16_t>::max() &&
        !isMark(*property)) {
        output += static_cast<char32_t>(scalar);
        return;
    }
    const auto kind = property->decomp_type;
    const bool otherWidth =
        kind == UTF8PROC_DECOMP_TYPE_WIDE || kind == UTF8PROC_DECOMP_TYPE_NARROW;
    const int options =
        UTF8PROC_DECOMPOSE | UTF8PROC_STRIPMARK | (otherWidth ? UTF8PROC_COMPAT : 0);
    // The longest decomposition of one scalar has 18.
    std::array<utf8proc_int32_t, 32> parts{};
    int boundary = 0;
    const auto count =
        utf8proc_decompose_char(scalar, parts.data(), static_cast<utf8proc_ssize_t>(parts.size()),
                                static_cast<utf8proc_option_t>(options), &boundary);
    for (utf8proc_ssize_t i = 0; i < count && i < static_cast<utf8proc_ssize_t>(parts.size()); ++i)
        output += static_cast<char32_t>(parts.at(static_cast<std::size_t>(i)));
}

} // namespace quenthisar::Text
