// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace quenthisar {

/// A text for where the pointer rests, in which nothing is taken for markup: names of other devices
/// stand in it. Screen readers may read it too, so it stays plain where it can.
QString hint(const QString& text);

} // namespace quenthisar
