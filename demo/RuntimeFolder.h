// SPDX-License-Identifier: MIT
#pragma once

namespace quenthisar::demo {

/// Sees to it that this process and all that it starts have a runtime folder (XDG_RUNTIME_DIR),
/// where the session has given none: the toolkit warns without one.
void provideRuntimeFolder();

} // namespace quenthisar::demo
