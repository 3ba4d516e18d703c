// SPDX-License-Identifier: MIT
#pragma once

#include "e2e/Accessible.h"
#include "e2e/StageFixture.h"

#include <QJsonObject>

namespace quenthisar::e2e {

/// What assistive technology calls the kinds of controls.
namespace Role {
inline const QString button = u"push button"_s, tab = u"page tab"_s, checkBox = u"check box"_s,
                     field = u"text"_s, picker = u"combo box"_s, slider = u"slider"_s,
                     radioButton = u"radio button"_s, label = u"label"_s;
} // namespace Role

inline constexpr std::uint32_t returnKey = 0xFF0D, downKey = 0xFF54, endKey = 0xFF57;

/// The program with its window open.
class WindowFixture : public StageFixture {
protected:
    using Wanted = std::function<bool(const Accessible&)>;

    /// Somebody who has the program for the first time, with nothing but window, mouse and
    /// keyboard.
    void SetUp() override { open({.programs = {}, .hasSettings = false}); }
    /// After `prepare`, if any.
    void open(demo::Stage::Options options, const std::function<void()>& prepare = {});
    void openProgram();
    /// By key; expects a good end.
    void quit();

    /// The element that the window shows; fails the test where there is none.
    std::optional<Accessible> find(const QString& role, const QString& name) const;
    /// Whether it shows one that is so, by now.
    bool shows(const QString& role, const QString& name, const Wanted& wanted = {}) const;
    /// Whether an element gets to be so.
    bool becomes(const QString& role, const QString& name, const Wanted& wanted) const;

    /// Clicks until it has an effect: the window may be on its way to its place. False where it
    /// never has one.
    bool click(const QString& role, const QString& name,
               const std::function<bool()>& hasEffect) const;
    /// Turns to a tab; by what is shown on that one only.
    bool openTab(const QString& name) const;
    bool fill(const QString& name, const QString& text) const;
    /// Chooses the offer so many rows below the present one.
    bool choose(const QString& name, int rowsBelow, const QString& offer) const;
    void press(std::uint32_t keySymbol) const { stage->hands.chord({keyCodeOf(keySymbol)}); }
    void moveTo(QPoint place) const;
    bool isOn(const QString& checkBox) const;

    QJsonObject settings() const;
    /// Waits until a value in the settings is so; its path is such as "profiles/0/name".
    bool isStored(const QString& path, const QJsonValue& value) const;

    std::optional<AccessibleDesktop> desktop;
    QString dongle, dongleId; // its name as the window has it
};

} // namespace quenthisar::e2e
