// SPDX-License-Identifier: MIT
#include "Linux/PastedText.h"

#include <string_view>
#include <utility>

namespace quenthisar {

namespace {

std::string utf8FromLatin1(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (code < 0x80) {
            result += character;
        } else {
            result += static_cast<char>(0xC0 | code >> 6);
            result += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return result;
}

bool isText(const PastedText::Piece& piece) {
    return piece.format == 8 &&
           (piece.type == PastedText::Type::utf8 || piece.type == PastedText::Type::latin1);
}

} // namespace

PastedText::Progress PastedText::take(Piece piece) {
    if (inPieces) return takeNext(piece);
    if (piece.type == Type::pieces) {
        inPieces = true;
        return Progress::more;
    }
    if (!isText(piece)) return Progress::refused;
    type = piece.type;
    bytes = std::move(piece.bytes);
    return Progress::complete;
}

PastedText::Progress PastedText::takeNext(const Piece& piece) {
    // Told of twice, or of what was there before the first.
    if (piece.type == Type::none) return Progress::more;
    if (piece.bytes.empty()) {
        if (type == Type::none && !isText(piece)) return Progress::refused;
        if (type == Type::none) type = piece.type;
        return Progress::complete;
    }
    if (!isText(piece) || (type != Type::none && type != piece.type)) return Progress::refused;
    type = piece.type;
    bytes += piece.bytes;
    return !piece.isAll || bytes.size() >= longest ? Progress::complete : Progress::more;
}

std::string PastedText::text() && {
    if (type == Type::latin1) bytes = utf8FromLatin1(bytes);
    if (bytes.size() > longest) bytes.resize(longest);
    return std::move(bytes);
}

} // namespace quenthisar
