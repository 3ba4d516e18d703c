// SPDX-License-Identifier: MIT
#include "Linux/JsonFileDefaults.h"

#include <QByteArray>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <nlohmann/json.hpp>

#include <cmath>
#include <type_traits>

namespace quenthisar {

namespace {

using Json = nlohmann::json;

constexpr const char* dataMember = "$data";
constexpr auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner;
constexpr auto folderOwnerOnly = ownerOnly | QFile::ExeOwner;

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

QString JsonFileDefaults::standardPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/quenthisar/defaults.json");
}

JsonFileDefaults::JsonFileDefaults(QString file, SystemLog& systemLog)
    : path(std::move(file)), log(systemLog), root(std::make_unique<Json>(Json::object())) {
    load();
}

JsonFileDefaults::~JsonFileDefaults() = default;

void JsonFileDefaults::load() {
    QFile file(path);
    if (!file.exists()) return;
    if (!file.open(QIODevice::ReadOnly)) return moveAside();
    const QByteArray bytes = file.readAll();
    auto json = Json::parse(bytes.begin(), bytes.end(), nullptr, false);
    if (file.error() != QFile::NoError || !json.is_object()) return moveAside();
    *root = std::move(json);
}

void JsonFileDefaults::moveAside() {
    const auto time =
        QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMddThhmmsszzz"));
    const QString aside = path + QStringLiteral(".corrupt-") + time;
    mayReplace = QFile::rename(path, aside);
    const char* outcome = mayReplace ? "moved aside: " : "and cannot be moved aside: ";
    log.log("Quenthisar: settings file is unreadable, " + (outcome + aside.toStdString()));
}

std::optional<DefaultsValue> JsonFileDefaults::object(std::string_view key) const {
    const auto it = root->find(std::string{key});
    if (it == root->end() || it->is_null()) return std::nullopt;
    return readValue(*it);
}

void JsonFileDefaults::set(std::string_view key, DefaultsValue value) {
    auto& place = (*root)[std::string{key}];
    auto next = written(value);
    if (place == next) return;
    std::swap(place, next);
    if (write() || writeFailureLogged) return;
    writeFailureLogged = true;
    log.log("Quenthisar: settings file cannot be written: " + path.toStdString());
}

bool JsonFileDefaults::write() {
    if (!mayReplace) return false;
    const QString folder = QFileInfo(path).path();
    if (!QDir().mkpath(folder)) return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return false;
    // Some file systems have no permissions; the settings are stored there all the same.
    QFile::setPermissions(folder, folderOwnerOnly);
    file.setPermissions(ownerOnly);
    // Text that is no UTF-8 is stored with replacement characters rather than not at all.
    const std::string text = root->dump(4, ' ', false, Json::error_handler_t::replace) + '\n';
    file.write(text.data(), static_cast<qint64>(text.size()));
    return file.commit();
}

} // namespace quenthisar
