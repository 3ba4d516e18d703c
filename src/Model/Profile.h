// SPDX-License-Identifier: MIT
#pragma once

#include "Support/Uuid.h"

#include <map>
#include <string>

namespace quenthisar {

/// Binding key to dongle. Keys are taken as they are: nothing checks their shape.
using Bindings = std::map<std::string, Uuid>;

/// A named set of edge bindings with its hooks. An empty command means none.
struct Profile {
    Uuid id;
    std::string name;
    Bindings bindings{};
    std::string activateCommand{};   // shell hook, when the profile becomes active
    std::string deactivateCommand{}; // shell hook, when another profile replaces it
    std::string targetCommand{};     // key chord for one of its dongles, such as cmd+l

    bool operator==(const Profile&) const = default;
};

} // namespace quenthisar
