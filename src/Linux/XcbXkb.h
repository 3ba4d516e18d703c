// SPDX-License-Identifier: MIT
#pragma once

// The header names a field `explicit`, which C++ does not allow.
#define explicit explicitParts
#include <xcb/xkb.h>
#undef explicit
