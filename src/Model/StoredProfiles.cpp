// SPDX-License-Identifier: MIT
#include "Model/StoredProfiles.h"

#include <nlohmann/json.hpp>

namespace quenthisar {

namespace {

using Json = nlohmann::json;

const Json* presentMember(const Json& object, const char* name) {
    const auto it = object.find(name);
    return it == object.end() || it->is_null() ? nullptr : &*it;
}

/// Empty when absent or null, none when it is no text.
std::optional<std::string> optionalText(const Json& object, const char* name) {
    const Json* member = presentMember(object, name);
    if (!member) return std::string{};
    if (!member->is_string()) return std::nullopt;
    return member->get<std::string>();
}

std::optional<Bindings> readBindings(const Json& object) {
    Bindings bindings;
    const Json* member = presentMember(object, "bindings");
    if (!member) return bindings;
    if (!member->is_object()) return std::nullopt;
    for (const auto& [key, value] : member->items()) {
        if (!value.is_string()) return std::nullopt;
        if (const auto id = Uuid::parse(value.get_ref<const std::string&>())) bindings[key] = *id;
    }
    return bindings;
}

std::optional<Profile> readProfile(const Json& object) {
    if (!object.is_object()) return std::nullopt;
    const Json* id = presentMember(object, "id");
    const Json* name = presentMember(object, "name");
    if (!id || !id->is_string() || !name || !name->is_string()) return std::nullopt;
    const auto uuid = Uuid::parse(id->get_ref<const std::string&>());
    auto bindings = readBindings(object);
    auto activate = optionalText(object, "activateCommand");
    auto deactivate = optionalText(object, "deactivateCommand");
    auto target = optionalText(object, "targetCommand");
    if (!uuid || !bindings || !activate || !deactivate || !target) return std::nullopt;
    return Profile{*uuid,
                   name->get<std::string>(),
                   std::move(*bindings),
                   std::move(*activate),
                   std::move(*deactivate),
                   std::move(*target)};
}

Json written(const Profile& profile) {
    Json bindings = Json::object();
    for (const auto& [key, dongle] : profile.bindings) bindings[key] = dongle.text();
    return {{"id", profile.id.text()},
            {"name", profile.name},
            {"bindings", std::move(bindings)},
            {"activateCommand", profile.activateCommand},
            {"deactivateCommand", profile.deactivateCommand},
            {"targetCommand", profile.targetCommand}};
}

} // namespace

std::optional<std::string> encodeProfiles(const std::vector<Profile>& profiles) {
    try {
        Json list = Json::array();
        for (const auto& profile : profiles) list.push_back(written(profile));
        return list.dump();
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

std::optional<std::vector<Profile>> decodeProfiles(std::string_view json) {
    const Json list = Json::parse(json, nullptr, false);
    if (!list.is_array()) return std::nullopt;
    std::vector<Profile> profiles;
    for (const auto& element : list) {
        auto profile = readProfile(element);
        if (!profile) return std::nullopt;
        profiles.push_back(std::move(*profile));
    }
    return profiles;
}

} // namespace quenthisar
