// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quenthisar {

struct DefaultsValue;
using DefaultsData = std::vector<std::uint8_t>;
using DefaultsDictionary = std::map<std::string, DefaultsValue>;

/// A stored setting. `std::monostate` stands for a value of a kind that no setting has.
struct DefaultsValue {
    std::variant<std::monostate, bool, double, std::string, DefaultsData, DefaultsDictionary> value;

    bool operator==(const DefaultsValue&) const = default;
};

/// The user's settings: text keys to values, kept across starts. Main thread.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// None when the key is absent.
    virtual std::optional<DefaultsValue> object(std::string_view key) const = 0;

    /// Replaces the value under `key` and stores it, at once or, of one that changes all the time,
    /// soon. A store that cannot be written keeps the value for this run.
    virtual void set(std::string_view key, DefaultsValue value) = 0;
};

/// The value under `key` if it is one of type `Type`.
template <class Type>
std::optional<Type> valueOf(const UserDefaults& defaults, std::string_view key) {
    auto object = defaults.object(key);
    if (!object) return std::nullopt;
    if (auto* value = std::get_if<Type>(&object->value)) return std::move(*value);
    return std::nullopt;
}

} // namespace quenthisar
