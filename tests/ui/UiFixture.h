// SPDX-License-Identifier: MIT
#pragma once

#include "unit/Fakes.h"

#include <QApplication>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace quenthisar {

/// Two displays side by side, two known dongles, one profile.
struct UiFixture : Fakes {
    AppState state{defaults, twoDisplays(), loginItem, launcher, log};

    UiFixture() {
        state.dongles = {{A, "Zandrovelkin BLE"}, {B, "Other"}};
        defaults.writes.clear();
    }

    const Profile& profile(std::size_t position) const { return (*state.profiles)[position]; }

    /// What the dongle manager does all the time.
    void publishDongles() {
        state.dongles.modify([](auto& list) { list.back().name += '+'; });
        settle();
    }

    /// Lets the views draw what has been published.
    static void settle() {
        QApplication::processEvents();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    /// On screen, with the keyboard.
    static void present(QWidget& view) {
        view.resize(480, 600);
        view.show();
        view.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&view, 10'000));
    }

private:
    FakeDisplays& twoDisplays() {
        displays.add("D2", {1920, 0, 1920, 1080});
        return displays;
    }
};

/// The controls below `view` with this name for screen readers, also those not on screen.
template <class Control>
std::vector<Control*> controlsNamed(const QWidget& view, const QString& name) {
    std::vector<Control*> found;
    for (auto* control : view.findChildren<Control*>())
        if (control->accessibleName() == name) found.push_back(control);
    return found;
}

template <class Control>
Control& controlNamed(const QWidget& view, const QString& name) {
    const auto found = controlsNamed<Control>(view, name);
    if (found.size() != 1)
        throw std::runtime_error(std::to_string(found.size()) + " of " + name.toStdString());
    return *found.front();
}

} // namespace quenthisar
