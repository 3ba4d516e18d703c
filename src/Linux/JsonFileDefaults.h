// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"

#include <QString>

#include <nlohmann/json_fwd.hpp>

#include <memory>

namespace quenthisar {

/// The settings as one JSON file, read once and replaced as a whole by each set that changes
/// something. Byte data stands in it as {"$data": "<base64>"}; keys that are not ours stay.
///
/// A file that does not parse, is no object or far too large, and what is no file, is moved aside
/// before anything is written. A file that cannot be written costs nothing but the storing. Each is
/// logged once per process. A link is written through: what it leads to is replaced.
class JsonFileDefaults final : public UserDefaults {
public:
    /// `$XDG_CONFIG_HOME/quenthisar/defaults.json`, or the same in `~/.config`.
    static QString standardPath();

    JsonFileDefaults(QString path, SystemLog& log);
    ~JsonFileDefaults() override;

    std::optional<DefaultsValue> object(std::string_view key) const override;
    void set(std::string_view key, DefaultsValue value) override;

private:
    void load();
    void moveAside();
    bool write();

    QString path;
    SystemLog& log;
    std::unique_ptr<nlohmann::json> root; // always an object
    bool mayReplace = true;               // false while a file that we could not read is in the way
    bool writeFailureLogged = false;
};

} // namespace quenthisar
