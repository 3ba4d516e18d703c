// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserDefaults.h"

#include <QByteArrayView>

#include <nlohmann/json_fwd.hpp>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quenthisar {

/// The settings as a JSON object, in memory. Byte data stands in it as {"$data": "<base64>"}; what
/// is not ours stays as it is.
class JsonSettings {
public:
    /// What is longer is not read.
    static constexpr qint64 sizeLimit = 4'000'000;

    JsonSettings();
    ~JsonSettings();
    JsonSettings(JsonSettings&& other) noexcept;
    JsonSettings& operator=(JsonSettings&& other) noexcept;

    /// None where it is no JSON, no object, too long or too deep.
    static std::optional<JsonSettings> parse(QByteArrayView bytes);

    /// None when the key is absent or null.
    std::optional<DefaultsValue> object(std::string_view key) const;

    /// False when that is what stands there already.
    bool set(std::string_view key, const DefaultsValue& value);

    /// In UTF-8, to be read by people too, with a line feed at the end. Text that is no UTF-8 has
    /// replacement characters.
    std::string text() const;

private:
    std::unique_ptr<nlohmann::json> root; // always an object
};

} // namespace quenthisar
