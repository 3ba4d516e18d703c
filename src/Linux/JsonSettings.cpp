// SPDX-License-Identifier: MIT
#include "Linux/JsonSettings.h"

#include <QByteArray>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <utility>

namespace quenthisar {

namespace {

using Json = nlohmann::json;

constexpr const char* dataMember = "$data";

/// Settings have some kilobytes and three levels. What is far beyond was not written by us, and
/// would make each start and each set long, or writing it overflow the stack.
constexpr int depthLimit = 100;

/// How deep brackets are nested in JSON; in what is none, any number.
int depthOf(QByteArrayView json) {
    int depth = 0, deepest = 0;
    bool inText = false, isEscaped = false;
    for (const char c : json) {
        if (inText) {
            if (c == '"' && !isEscaped) inText = false;
            isEscaped = c == '\\' && !isEscaped;
        } else if (c == '"') {
            inText = true;
        } else if (c == '[' || c == '{') {
            deepest = std::max(deepest, ++depth);
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return deepest;
}

std::optional<DefaultsData> readData(const Json& json) {
    if (!json.is_object() || json.size() != 1) return std::nullopt;
    const auto it = json.find(dataMember);
    if (it == json.end() || !it->is_string()) return std::nullopt;
    const auto result = QByteArray::fromBase64Encoding(
        QByteArray::fromStdString(it->get<std::string>()), QByteArray::AbortOnBase64DecodingErrors);
    if (!result) return std::nullopt;
    return DefaultsData(result.decoded.begin(), result.decoded.end());
}

/// A value that is no dictionary. What no setting has becomes `std::monostate`.
DefaultsValue readSimple(const Json& json) {
    if (json.is_boolean()) return {json.get<bool>()};
    if (json.is_number()) return {json.get<double>()};
    if (json.is_string()) return {json.get<std::string>()};
    if (auto data = readData(json)) return {std::move(*data)};
    return {};
}

DefaultsValue readValue(const Json& json) {
    if (!json.is_object() || json.contains(dataMember)) return readSimple(json);
    DefaultsDictionary dictionary;
    for (const auto& [key, value] : json.items()) dictionary.emplace(key, readSimple(value));
    return {std::move(dictionary)};
}

bool isRepresentable(const DefaultsValue& value) {
    const auto* number = std::get_if<double>(&value.value);
    return !number || std::isfinite(*number);
}

Json written(const DefaultsValue& value) {
    return std::visit(
        [](const auto& alternative) -> Json {
            using Alternative = std::decay_t<decltype(alternative)>;
            if constexpr (std::is_same_v<Alternative, std::monostate>) {
                return nullptr;
            } else if constexpr (std::is_same_v<Alternative, DefaultsData>) {
                const QByteArray bytes(reinterpret_cast<const char*>(alternative.data()),
                                       static_cast<qsizetype>(alternative.size()));
                return {{dataMember, bytes.toBase64().toStdString()}};
            } else if constexpr (std::is_same_v<Alternative, DefaultsDictionary>) {
                Json dictionary = Json::object();
                // What JSON has no number for would spoil the whole dictionary when it is read.
                for (const auto& [key, entry] : alternative)
                    if (isRepresentable(entry)) dictionary[key] = written(entry);
                return dictionary;
            } else {
                return alternative;
            }
        },
        value.value);
}

} // namespace

JsonSettings::JsonSettings() : root(std::make_unique<Json>(Json::object())) {}

JsonSettings::~JsonSettings() = default;
JsonSettings::JsonSettings(JsonSettings&& other) noexcept = default;
JsonSettings& JsonSettings::operator=(JsonSettings&& other) noexcept = default;

std::optional<JsonSettings> JsonSettings::parse(QByteArrayView bytes) {
    if (bytes.size() > sizeLimit) return std::nullopt;
    // Not by a callback of the parser: with one it goes through an object at the end of each
    // member.
    if (depthOf(bytes) > depthLimit) return std::nullopt;
    auto json = Json::parse(bytes.begin(), bytes.end(), nullptr, false);
    if (!json.is_object()) return std::nullopt;
    JsonSettings settings;
    *settings.root = std::move(json);
    return settings;
}

std::optional<DefaultsValue> JsonSettings::object(std::string_view key) const {
    const auto it = root->find(std::string{key});
    if (it == root->end() || it->is_null()) return std::nullopt;
    return readValue(*it);
}

bool JsonSettings::set(std::string_view key, const DefaultsValue& value) {
    auto& place = (*root)[std::string{key}];
    auto next = written(value);
    if (place == next) return false;
    std::swap(place, next);
    return true;
}

std::string JsonSettings::text() const {
    return root->dump(4, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace quenthisar
