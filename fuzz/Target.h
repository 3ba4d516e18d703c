// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace quenthisar::fuzz {

using Bytes = std::span<const std::uint8_t>;

/// What each program of this folder defines: handles one input, whatever it is, and fails where
/// something does not hold that must hold for all inputs.
void run(Bytes input);

/// What an input may take of the processor for each started kilobyte. A program may define its own.
std::chrono::milliseconds timePerKilobyte();

/// Ends the program with a message, which the fuzzer takes for a finding.
[[noreturn]] void fail(const char* what);

inline void require(bool holds, const char* what) {
    if (!holds) fail(what);
}

inline std::string_view textOf(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Takes an input apart, for programs that make more of it than one text. At its end come zeros and
/// empty texts. Numbers are counted from '0', so that seeds are readable.
class Reader {
public:
    explicit Reader(Bytes input) : rest(input) {}

    bool atEnd() const { return rest.empty(); }

    std::uint8_t byte() {
        if (rest.empty()) return 0;
        const auto first = rest.front();
        rest = rest.subspan(1);
        return first;
    }

    /// Less than `count`.
    std::size_t number(std::size_t count) {
        return rest.empty() ? 0 : static_cast<std::uint8_t>(byte() - '0') % count;
    }

    bool flag() { return number(2) == 1; }

    template <class Table>
    const auto& oneOf(const Table& table) {
        return table[number(std::size(table))];
    }

    /// At most so many bytes.
    Bytes bytes(std::size_t count) {
        const auto taken = rest.first(count < rest.size() ? count : rest.size());
        rest = rest.subspan(taken.size());
        return taken;
    }

    /// Up to a zero byte or the end.
    std::string text() {
        const auto all = textOf(rest);
        const auto end = all.find('\0');
        const auto taken = all.substr(0, end);
        rest = rest.subspan(end == std::string_view::npos ? rest.size() : end + 1);
        return std::string{taken};
    }

private:
    Bytes rest;
};

} // namespace quenthisar::fuzz
