// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserDefaults.h"

#include <string>
#include <utility>
#include <vector>

namespace quenthisar {

/// Settings in memory, and the keys that were written, in order.
class FakeUserDefaults final : public UserDefaults {
public:
    std::optional<DefaultsValue> object(std::string_view key) const override {
        const auto it = values.find(std::string{key});
        return it != values.end() ? std::optional{it->second} : std::nullopt;
    }

    void set(std::string_view key, DefaultsValue value) override {
        writes.emplace_back(key);
        values.insert_or_assign(std::string{key}, std::move(value));
    }

    void store(const std::string& key, decltype(DefaultsValue::value) value) {
        values[key] = {std::move(value)};
    }

    void storeData(const std::string& key, const std::string& text) {
        store(key, DefaultsData(text.begin(), text.end()));
    }

    /// The text of the byte data under `key`.
    std::string data(const std::string& key) const {
        const auto bytes = valueOf<DefaultsData>(*this, key).value_or(DefaultsData{});
        return {bytes.begin(), bytes.end()};
    }

    DefaultsDictionary values;
    std::vector<std::string> writes;
};

} // namespace quenthisar
