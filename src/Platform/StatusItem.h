// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quenthisar {

/// What choosing a menu item does. All but the last are the menu delegate's business.
enum class MenuAction : std::uint8_t {
    none,
    toggleCaptureMenu,
    selectProfile,
    takeOver,
    pasteMenu,
    showWindow,
    terminate, // ends the application
};

struct MenuItem;
using Menu = std::vector<MenuItem>;

/// One line of a menu, as it is to be shown. Texts may come from anywhere: nothing in them is a
/// mnemonic or markup.
struct MenuItem {
    std::string title{}; // UTF-8
    MenuAction action = MenuAction::none;
    std::string keyEquivalent{}; // a letter, together with Command; empty: none
    std::optional<bool> state{}; // its check mark; none: it never has one
    bool isEnabled = true;
    bool isSeparator = false; // with none of the others
    std::optional<Menu> submenu{};
    std::optional<std::string> representedObject{}; // handed to the action

    bool operator==(const MenuItem&) const = default;
};

/// Fills a menu, and does what is chosen in it.
struct MenuDelegate {
    /// Called before the menu opens, and whenever else its host wants to know what it holds.
    std::function<void(Menu& menu)> menuNeedsUpdate;
    /// An enabled item was chosen; its action is neither `none` nor `terminate`.
    std::function<void(const MenuItem& item)> choose;
};

struct StatusImage {
    std::string name;
    double width = 0, height = 0; // in points
    bool isTemplate = false;      // only its shape counts: the desktop colours it
    std::string accessibilityDescription;
};

/// An item in the desktop's status bar. Without a status bar it waits for one. Destroying it takes
/// it away.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// An image that is missing or does not load leaves the item without one.
    virtual void setImage(const StatusImage& image) = 0;
    virtual void setMenu(MenuDelegate delegate) = 0;
    /// What the menu holds may have changed. Hosts that keep a copy of it get a new one.
    virtual void menuMayHaveChanged() = 0;
};

/// Where status items live. Main thread.
class StatusBar {
public:
    virtual ~StatusBar() = default;

    /// As wide as its content, and empty.
    virtual std::unique_ptr<StatusItem> statusItem() = 0;
};

} // namespace quenthisar
