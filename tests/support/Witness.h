// SPDX-License-Identifier: MIT
#pragma once

#include "Model/Takeover.h"
#include "Platform/EventTap.h"
#include "support/FakeCentral.h"

#include <optional>
#include <string>

namespace quenthisar {

/// Sees what comes of the things that happen in a `World`, each as it comes.
class Witness {
public:
    virtual ~Witness() = default;

    virtual void willPost(const TapEvent&) {}
    virtual void posted(const TapEvent&, TapVerdict) {}
    virtual void wrote(const Write&) {}
    /// The field still holds the takeover before.
    virtual void takeoverWillBe(const std::optional<Takeover>&) {}
    virtual void profileWillBe(const Uuid&) {}
    virtual void linkLost(const Uuid&) {}
    /// All of the above but input and payloads, and everything else, in words.
    virtual void happened(const std::string&) {}
};

} // namespace quenthisar
