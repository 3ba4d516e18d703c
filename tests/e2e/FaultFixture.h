// SPDX-License-Identifier: MIT
#pragma once

#include "e2e/Faults.h"
#include "e2e/StageFixture.h"

#include <QElapsedTimer>

#include <optional>

namespace quenthisar::e2e {

/// How the virtual dongle calls the only one and its adapter.
inline const QString firstDongle = QStringLiteral(""), firstAdapter = QStringLiteral("hci0");

/// A stage whose dongle and daemon can be asked for faults.
class FaultFixture : public StageFixture {
protected:
    using Held = demo::XClient::Held;

    void SetUp() override {
        StageFixture::SetUp();
        if (!HasFatalFailure()) admitFaults();
    }

    /// Once there is a stage.
    void admitFaults() { faults.emplace(stage->rig.systemBusAddress()); }

    void ask(const QString& method, const QVariantList& arguments = {}) {
        ASSERT_TRUE(faults->ask(method, arguments)) << method.toStdString();
    }

    /// Waits for a line of the dongle since the mark that ends in `event`; the time it gives.
    std::optional<std::chrono::microseconds> waitForEvent(const QString& event) {
        std::optional<std::chrono::microseconds> time;
        stage->rig.dongle().waitFor(
            dongleMark,
            [&](const QStringList& lines) {
                for (const auto& line : lines) {
                    if (!line.endsWith(QStringLiteral("\" ") + event)) continue;
                    time = std::chrono::microseconds{line.section(u' ', 0, 0).toLongLong()};
                    return true;
                }
                return false;
            },
            soon);
        return time;
    }

    /// The link is up, and the pairing probe answered.
    bool isReady() { return waitForEvent(QStringLiteral("answer ok")).has_value(); }

    void hold(const Held& held, bool down) {
        for (const auto key : held.keys) stage->hands.key(key, down);
        for (const auto button : held.buttons)
            stage->hands.button(static_cast<std::uint8_t>(button), down);
    }

    /// In a takeover: how long it is from the return chord to the first motion of the pointer.
    std::chrono::milliseconds timeOfReturn() {
        const auto frozenAt = stage->host.pointer();
        QElapsedTimer elapsed;
        elapsed.start();
        stage->pressReturnChord();
        const auto moves = [&] {
            stage->hands.moveBy({-1, 0});
            return stage->host.pointer() != frozenAt;
        };
        EXPECT_TRUE(waitUntil(moves, soon));
        return std::chrono::milliseconds{elapsed.elapsed()};
    }

    std::optional<Faults> faults;
};

} // namespace quenthisar::e2e
