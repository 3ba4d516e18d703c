// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quenthisar {

/// Operations on UTF-8 text by the rules of Unicode. A byte that belongs to no valid sequence is
/// kept as it is and counts as a character that is neither white space nor a letter. Callable from
/// any thread.
namespace Text {

/// Takes the first Unicode scalar value off `text`, which is not empty. A byte that is no UTF-8 is
/// taken as -1.
std::int32_t takeScalar(std::string_view& text);

/// Without space separators (category Zs) and tabs at both ends. Line breaks stay.
std::string_view trimmedOfBlanks(std::string_view text);

/// Without separators (Zs, Zl, Zp), tabs and the line-break controls (U+000A to U+000D, U+0085) at
/// both ends.
std::string_view trimmedOfWhitespaceAndNewlines(std::string_view text);

/// As a text of unknown origin is shown beside others: on one line, with a space for each control
/// and line break, and without the marks that turn the direction of what stands after them. What is
/// no UTF-8 becomes U+FFFD.
std::string onOneLine(std::string_view text);

/// In lower case, as Unicode's full mapping has it outside of any language.
std::string lowercased(std::string_view text);

/// Appends `scalar` to `output` without its diacritics and in its ordinary width: canonically
/// decomposed, marks left out, full-width and half-width forms mapped. Other compatibility forms
/// and the syllables of Hangul stay as they are.
void appendFolded(std::int32_t scalar, std::u32string& output);

} // namespace Text
} // namespace quenthisar
