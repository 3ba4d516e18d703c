// SPDX-License-Identifier: MIT
#include "Linux/JsonFileDefaults.h"

#include "Linux/ConfigFolder.h"

#include <QByteArray>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QThread>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <type_traits>

namespace quenthisar {

namespace {

using Json = nlohmann::json;

constexpr const char* dataMember = "$data";
constexpr auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner;
constexpr auto folderOwnerOnly = ownerOnly | QFile::ExeOwner;

/// Settings have some kilobytes and three levels. What is far beyond was not written by us, and
/// would make each start and each set long, or writing it overflow the stack.
constexpr qint64 sizeLimit = 4'000'000;
constexpr int depthLimit = 100;

/// None where it is no settings.
std::optional<Json> readFile(const QString& path) {
    // Only a file: opening a pipe would wait for somebody to write.
    const QFileInfo information(path);
    QFile file(path);
    if (!information.isFile() || information.size() > sizeLimit || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.readAll();
    if (file.error() != QFile::NoError) return std::nullopt;
    bool isTooDeep = false;
    const auto watchDepth = [&isTooDeep](int depth, Json::parse_event_t, const Json&) {
        isTooDeep = isTooDeep || depth > depthLimit;
        return !isTooDeep;
    };
    auto json = Json::parse(bytes.begin(), bytes.end(), watchDepth, false);
    if (isTooDeep || !json.is_object()) return std::nullopt;
    return json;
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

constexpr qint64 burstInterval = 100; // milliseconds

} // namespace

QString JsonFileDefaults::standardPath() {
    return configFolder() + QStringLiteral("/quenthisar/defaults.json");
}

JsonFileDefaults::JsonFileDefaults(QString file, SystemLog& systemLog)
    : path(std::move(file)), log(systemLog), root(std::make_unique<Json>(Json::object())) {
    load();
    nextWrite.setSingleShot(true);
    nextWrite.setTimerType(Qt::PreciseTimer);
    nextWrite.callOnTimeout([this] { store(); });
}

JsonFileDefaults::~JsonFileDefaults() {
    flush();
}

void JsonFileDefaults::flush() {
    if (!isWritten) store();
}

void JsonFileDefaults::load() {
    if (!QFileInfo::exists(path)) return;
    // Whoever can write it has commands run: the hooks.
    QFile::setPermissions(QFileInfo(path).path(), folderOwnerOnly);
    QFile::setPermissions(path, ownerOnly);
    if (auto json = readFile(path))
        *root = std::move(*json);
    else
        moveAside();
}

void JsonFileDefaults::moveAside() {
    const auto time =
        QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMddThhmmsszzz"));
    const QString aside = path + QStringLiteral(".corrupt-") + time;
    // Not the toolkit's: where this fails, it copies.
    mayReplace = std::rename(QFile::encodeName(path), QFile::encodeName(aside)) == 0;
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
    // What could not be written is tried again.
    if (place == next && isWritten) return;
    std::swap(place, next);
    isWritten = false;
    // Before the loop runs and after it, nothing would write later.
    const bool isBurst = QThread::currentThread()->loopLevel() > 0 && key == lastKey &&
                         sinceLastWrite.isValid() && !sinceLastWrite.hasExpired(burstInterval);
    lastKey = key;
    if (!isBurst) return store();
    if (!nextWrite.isActive())
        nextWrite.start(
            static_cast<int>(std::max<qint64>(burstInterval - sinceLastWrite.elapsed(), 0)));
}

void JsonFileDefaults::store() {
    nextWrite.stop();
    isWritten = write();
    sinceLastWrite.start();
    if (isWritten || writeFailureLogged) return;
    writeFailureLogged = true;
    log.log("Quenthisar: settings file cannot be written: " + path.toStdString());
}

bool JsonFileDefaults::write() {
    // Somebody may have put it there since the start.
    if (mayReplace && QFileInfo(path).isDir()) moveAside();
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
    // A disk that is nearly full takes a part, and `commit` calls that no error.
    return file.write(text.data(), std::ssize(text)) == std::ssize(text) && file.flush() &&
           file.commit();
}

} // namespace quenthisar
