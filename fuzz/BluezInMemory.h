// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/BluezDaemon.h"

#include <functional>
#include <vector>

namespace quenthisar::fuzz {

/// The other side of a `BluezDaemon` that has no bus: it is told what an input says, and what is
/// asked of it waits here for an answer.
struct BluezInMemory {
    struct Question {
        QString method;
        BluezDaemon::Answer answer;
    };

    /// Of the daemon that was constructed last.
    static BluezInMemory& current();

    BluezPicture* picture = nullptr;
    std::function<void(const QString& owner)> follow;
    std::function<void(const BluezObjects& objects)> read; // ends what `follow` began
    std::function<void(BluezDaemon::Presence)> forget;
    std::vector<Question> questions; // in order
    BluezObjects objects;            // which whoever asks for them gets
};

} // namespace quenthisar::fuzz
