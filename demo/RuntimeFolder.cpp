// SPDX-License-Identifier: MIT
#include "RuntimeFolder.h"

#include <QTemporaryDir>

namespace quenthisar::demo {

void provideRuntimeFolder() {
    if (qEnvironmentVariableIsSet("XDG_RUNTIME_DIR")) return;
    static const QTemporaryDir folder;
    if (folder.isValid()) qputenv("XDG_RUNTIME_DIR", folder.path().toLocal8Bit());
}

} // namespace quenthisar::demo
