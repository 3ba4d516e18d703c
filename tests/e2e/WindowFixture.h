// SPDX-License-Identifier: MIT
#pragma once

#include "e2e/Accessible.h"
#include "e2e/StageFixture.h"

#include <QJsonObject>

namespace quenthisar::e2e {

/// What assistive technology calls the kinds of controls.
namespace Role {
inline const QString button = QStringLiteral("push button"), tab = QStringLiteral("page tab"),
                     checkBox = QStringLiteral("check box"), field = QStringLiteral("text"),
                     picker = QStringLiteral("combo box"), slider = QStringLiteral("slider"),
                     radioButton = QStringLiteral("radio button"), label = QStringLiteral("label");
} // namespace Role

inline constexpr std::uint32_t returnKey = 0xFF0D, spaceKey = 0x20, leftKey = 0xFF51,
                               downKey = 0xFF54, endKey = 0xFF57, controlKey = 0xFFE3;

/// Somebody who has the program for the first time, with nothing but window, mouse and keyboard.
class WindowFixture : public StageFixture {
protected:
    using Effect = std::function<bool()>;

    void SetUp() override { begin({}); }
    /// Without settings; the program's window is on screen then.
    void begin(demo::Stage::Options options);

    void openProgram();
    /// By key; expects a good end.
    void quit();

    /// The element that the window shows; fails the test where there is none.
    std::optional<Accessible> find(const QString& role, const QString& name) const;
    bool shows(const QString& role, const QString& name) const;
    /// Whether an element gets to be so.
    bool becomes(const QString& role, const QString& name,
                 const std::function<bool(const Accessible&)>& wanted) const;

    /// Clicks until it has an effect: the window may be on its way to its place. False where it
    /// never has one.
    bool click(const QString& role, const QString& name, const Effect& hasEffect) const;
    /// Turns to a tab; by what is shown on that one only.
    bool openTab(const QString& name) const;
    bool fill(const QString& name, const QString& text) const;
    /// Chooses the offer so many rows below the present one.
    bool choose(const QString& name, int rowsBelow, const QString& offer) const;
    void press(std::uint32_t keySymbol) const;
    void moveTo(QPoint place) const;

    bool isOn(const QString& checkBox) const;

    /// With the profiles, a document in the document, as they mean.
    QJsonObject settings() const;
    /// Waits until a value in the settings is so; its path is such as "profiles/0/name".
    bool isStored(const QString& path, const QJsonValue& value) const;

    std::optional<AccessibleDesktop> desktop;
    QString dongle, dongleId; // its name as the window has it
};

} // namespace quenthisar::e2e
