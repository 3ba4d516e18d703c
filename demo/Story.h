// SPDX-License-Identifier: MIT
#pragma once

#include "Rig.h"

namespace quenthisar::demo {

/// Plays on a stage of its own: the clipboard typed on the target, then one takeover: across the
/// bound edge, words typed there, the pointer moved, clicked and scrolled, and back. Tells of each
/// step and of each report, and saves a picture of both screens to `picture` when the words stand
/// on the target. True only if the target got what was copied and typed, the host got none of it
/// and showed its panel, and nothing stayed down.
/// Throws std::runtime_error if the play can't go on.
bool playStory(const Programs& programs, const QString& picture);

} // namespace quenthisar::demo
