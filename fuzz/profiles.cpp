// SPDX-License-Identifier: MIT
// The stored list of profiles.
#include "Model/StoredProfiles.h"

#include "Target.h"

namespace quenthisar {

namespace {

using fuzz::require;

/// Profiles that were not read may hold any bytes: what is no UTF-8 is not stored.
void checkAnyBytes(fuzz::Bytes input) {
    fuzz::Reader reader(input);
    std::vector<Profile> profiles;
    while (!reader.atEnd()) {
        auto& profile = profiles.emplace_back();
        profile.name = reader.text();
        profile.bindings.emplace(reader.text(), Uuid{});
        profile.targetCommand = reader.text();
    }
    const auto json = encodeProfiles(profiles);
    require(!json || decodeProfiles(*json) == profiles, "reads something else than it wrote");
}

} // namespace

void fuzz::run(Bytes input) {
    if (const auto profiles = decodeProfiles(textOf(input))) {
        const auto json = encodeProfiles(*profiles);
        require(json.has_value(), "can't write what it has read");
        require(decodeProfiles(*json) == profiles, "reads something else than it wrote");
    }
    checkAnyBytes(input);
}

} // namespace quenthisar
