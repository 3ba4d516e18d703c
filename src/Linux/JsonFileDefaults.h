// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/JsonSettings.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"

#include <QElapsedTimer>
#include <QString>
#include <QTimer>

#include <string>

namespace quenthisar {

/// The settings as one JSON file, read once and replaced as a whole by each set that changes
/// something.
///
/// A file that does not parse, is no object or far too large, and what is no file, is moved aside
/// before anything is written. A file that cannot be written costs nothing but the storing. Each is
/// logged once per process. A link is written through: what it leads to is replaced.
///
/// While the main loop runs, a key that is set again and again, as a slider does, is written at
/// once and then every 100 ms: writing waits for the disk, and the loop carries input.
class JsonFileDefaults final : public UserDefaults {
public:
    /// `$XDG_CONFIG_HOME/quenthisar/defaults.json`, or the same in `~/.config`.
    static QString standardPath();

    JsonFileDefaults(QString path, SystemLog& log);
    ~JsonFileDefaults() override;

    /// Writes what waits, for an end of the program without destructors.
    void flush();

    std::optional<DefaultsValue> object(std::string_view key) const override;
    void set(std::string_view key, DefaultsValue value) override;

private:
    void load();
    void moveAside();
    void store();
    bool write();

    QString path;
    SystemLog& log;
    JsonSettings settings;
    bool mayReplace = true; // false while a file that we could not read is in the way
    bool isWritten = true;
    bool writeFailureLogged = false;

    std::string lastKey; // that was written
    QElapsedTimer sinceLastWrite;
    QTimer nextWrite; // runs while something is not written yet
};

} // namespace quenthisar
