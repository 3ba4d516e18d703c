// SPDX-License-Identifier: MIT
#pragma once

#include <QThread>

#include <memory>

namespace quenthisar {

/// Makes the toolkit look for the desktop's fonts on a thread of its own, so that the first text
/// does not wait for all of it. Whoever needs a font meanwhile waits for the rest.
class FontLookup final {
public:
    /// Needs the application object. From here on nobody may change the environment, which decides
    /// where the fonts are.
    FontLookup();
    FontLookup(const FontLookup&) = delete;
    FontLookup& operator=(const FontLookup&) = delete;
    /// Waits for the thread.
    ~FontLookup();

private:
    const std::unique_ptr<QThread> thread;
};

} // namespace quenthisar
