// SPDX-License-Identifier: MIT
// A text that another program hands over, in one piece or many, of types of its choice.
#include "Linux/PastedText.h"
#include "Support/Text.h"

#include "Target.h"

#include <array>

namespace quenthisar {

namespace {

using fuzz::require;
using Type = PastedText::Type;
using Progress = PastedText::Progress;

bool isUtf8(std::string_view text) {
    while (!text.empty())
        if (Text::takeScalar(text) < 0) return false;
    return true;
}

struct Handover {
    Progress progress = Progress::more;
    std::string text;
};

Handover whole(std::size_t limit, Type type, const std::string& bytes) {
    PastedText text(limit);
    const auto progress = text.take({.type = type, .format = 8, .bytes = bytes});
    return {progress, std::move(text).text()};
}

} // namespace

void fuzz::run(Bytes input) {
    constexpr std::array types{Type::utf8, Type::latin1, Type::pieces, Type::none, Type::other};
    constexpr std::array<std::uint8_t, 3> formats{8, 16, 32};
    Reader reader(input);
    const std::size_t limit = 1 + reader.byte();
    PastedText text(limit);
    std::string all;
    auto kind = Type::none;
    auto progress = Progress::more;
    while (progress == Progress::more && !reader.atEnd()) {
        require(text.room() <= limit, "asks for more than it takes");
        PastedText::Piece piece{.type = reader.oneOf(types), .format = reader.oneOf(formats)};
        piece.isAll = !reader.flag();
        // The server hands over whole words.
        const auto taken = reader.text().substr(0, (text.room() + 3) / 4 * 4);
        piece.bytes = taken;
        if (piece.type == Type::utf8 || piece.type == Type::latin1) {
            if (kind == Type::none) kind = piece.type;
            all += taken;
        }
        progress = text.take(std::move(piece));
    }
    if (progress != Progress::complete) return;
    const auto result = std::move(text).text();
    require(result.size() <= limit, "hands on more than it may");
    require(kind != Type::none, "hands on what is no text");
    const auto expected = whole(limit, kind, all);
    require(expected.progress == Progress::complete && expected.text == result,
            "pieces make another text than the whole");
    if (kind == Type::latin1 && result.size() < limit)
        require(isUtf8(result), "hands on what is no UTF-8");
}

} // namespace quenthisar
