// SPDX-License-Identifier: MIT
// The clipboard's text, as any program leaves it there, to what is typed.
#include "Capture/KeycodeMap.h"
#include "Support/Text.h"

#include "Target.h"

#include <algorithm>
#include <vector>

namespace quenthisar {

namespace {

using fuzz::require;
using Typed = std::vector<std::uint8_t>;

/// The text cut before some character; not between a carriage return and its line feed, which are
/// one line end.
std::size_t cut(std::string_view text, std::size_t wanted) {
    std::string_view rest = text;
    while (rest.size() > text.size() - wanted) {
        const auto scalar = Text::takeScalar(rest);
        if (scalar == '\r' && rest.starts_with('\n')) rest.remove_prefix(1);
    }
    return text.size() - rest.size();
}

} // namespace

void fuzz::run(Bytes input) {
    constexpr std::size_t longest = 0x100000;
    Reader reader(input);
    const std::size_t limit = reader.byte(), wanted = reader.byte();
    const auto text = textOf(reader.bytes(input.size()));

    const auto typed = KeycodeMap::asciiBytes(text, longest);
    for (const auto byte : typed)
        require(KeycodeMap::usbKeypress(byte).has_value(), "leaves what can't be typed");
    require(typed.size() <= text.size(), "types more than there is");

    const auto first = KeycodeMap::asciiBytes(text, limit);
    require(first.size() == std::min(limit, typed.size()) &&
                std::equal(first.begin(), first.end(), typed.begin()),
            "a limit changes more than the length");

    const auto place = cut(text, std::min(wanted, text.size()));
    auto inTwo = KeycodeMap::asciiBytes(text.substr(0, place), longest);
    const auto second = KeycodeMap::asciiBytes(text.substr(place), longest);
    inTwo.insert(inTwo.end(), second.begin(), second.end());
    require(inTwo == typed, "a part is typed differently than in the whole");

    const std::string again(typed.begin(), typed.end());
    require(KeycodeMap::asciiBytes(again, longest) == typed, "changes what can be typed");
}

} // namespace quenthisar
