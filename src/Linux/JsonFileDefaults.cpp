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

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace quenthisar {

namespace {

constexpr auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner;
constexpr auto folderOwnerOnly = ownerOnly | QFile::ExeOwner;

/// None where it is no settings.
std::optional<JsonSettings> readFile(const QString& path) {
    // Only a file: opening a pipe would wait for somebody to write.
    const QFileInfo information(path);
    QFile file(path);
    if (!information.isFile() || information.size() > JsonSettings::sizeLimit ||
        !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.readAll();
    if (file.error() != QFile::NoError) return std::nullopt;
    return JsonSettings::parse(bytes);
}

constexpr qint64 burstInterval = 100; // milliseconds

} // namespace

QString JsonFileDefaults::standardPath() {
    return configFolder() + QStringLiteral("/quenthisar/defaults.json");
}

JsonFileDefaults::JsonFileDefaults(QString file, SystemLog& systemLog)
    : path(std::move(file)), log(systemLog) {
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
    if (auto read = readFile(path))
        settings = std::move(*read);
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
    return settings.object(key);
}

void JsonFileDefaults::set(std::string_view key, DefaultsValue value) {
    const bool isNew = settings.set(key, value);
    // What could not be written is tried again.
    if (!isNew && isWritten) return;
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
    const std::string text = settings.text();
    // A disk that is nearly full takes a part, and `commit` calls that no error.
    return file.write(text.data(), std::ssize(text)) == std::ssize(text) && file.flush() &&
           file.commit();
}

} // namespace quenthisar
