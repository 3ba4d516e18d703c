// SPDX-License-Identifier: MIT
#pragma once

#include "linux/XStage.h"

#include "demo/InputTestDevice.h"

#include <gtest/gtest.h>

namespace quenthisar::test {

/// Takeovers on Xorg, with devices like real ones: accelerated, repeating, with smooth wheels.
struct XorgStage : XStage {
    XorgStage() : XStage(Server::xorg) {}

    QString socket(const char* device) const {
        return folder.filePath(QString::fromLatin1(device));
    }

    /// Clicks with the middle button: all that was done before it has been delivered then.
    void finish() {
        mouse.click(2);
        EXPECT_TRUE(waitFor(EventType::otherMouseUp));
    }

    std::vector<EventType> typesWithoutMotion() const {
        auto result = types();
        std::erase(result, EventType::mouseMoved);
        return result;
    }

    demo::InputTestDevice mouse{socket("mouse")}, keyboard{socket("keyboard")},
        tablet{socket("tablet")};
};

} // namespace quenthisar::test
