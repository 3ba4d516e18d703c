// SPDX-License-Identifier: MIT
#pragma once

#include "Support/Uuid.h"

namespace quenthisar {

inline const Uuid A = *Uuid::parse("00000000-0000-4000-8000-00000000AAAA");
inline const Uuid B = *Uuid::parse("00000000-0000-4000-8000-00000000BBBB");
inline const Uuid C = *Uuid::parse("00000000-0000-4000-8000-00000000CCCC");

} // namespace quenthisar
