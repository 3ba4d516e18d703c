// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace quenthisar {

/// A text as another program hands it over: whole or, after it has announced so, in pieces up to an
/// empty one. That program may put there what it likes.
class PastedText {
public:
    enum class Type { none, utf8, latin1, pieces, other };
    enum class Progress { more, complete, refused };

    /// What a property held.
    struct Piece {
        Type type = Type::none;
        std::uint8_t format = 0; // bits
        std::string bytes;
        bool isAll = true; // no more than was asked for
    };

    /// Of more than `limit` bytes the first ones are taken.
    explicit PastedText(std::size_t limit) : longest(limit) {}

    /// The property, each time that it is put there. After `more` the next one is waited for.
    Progress take(Piece piece);

    /// How much of the property to ask for.
    std::size_t room() const { return longest - bytes.size(); }

    /// In UTF-8 if the other program says so, once it is complete.
    std::string text() &&;

private:
    Progress takeNext(const Piece& piece);

    std::size_t longest;
    Type type = Type::none; // of all pieces
    bool inPieces = false;
    std::string bytes;
};

} // namespace quenthisar
