// SPDX-License-Identifier: MIT
// The status menu with names that come from the air and the settings, as hosts on the bus ask for
// it, with whatever numbers and names they like.
#include "AppState.h"
#include "Linux/DBusMenu.h"
#include "Linux/MenuTitle.h"
#include "UI/StatusMenu.h"
#include "support/FakeDisplays.h"
#include "support/FakeHost.h"
#include "support/FakeUserDefaults.h"

#include "Loop.h"
#include "Target.h"

#include <algorithm>
#include <array>
#include <limits>
#include <set>

namespace quenthisar {

namespace {

using namespace Qt::StringLiterals;
using fuzz::require;

/// Of dongles, and of profiles: each one takes two bytes of the input, and much more to be shown.
constexpr std::size_t most = 16;

void checkTitle(const std::string& name) {
    const auto title = menuTitle(name);
    require(title.size() <= 75, "a title too long");
    require(title.isValidUtf16(), "a title with half a character");
    for (const QChar c : title)
        require(c.category() != QChar::Other_Control && c.direction() != QChar::DirRLO &&
                    c.direction() != QChar::DirRLI && c != QChar::LineSeparator,
                "a title that breaks or turns the line");
    if (title.size() <= 60) require(menuTitle(title.toStdString()) == title, "cuts a title twice");
}

/// The numbers of the items below `layout`.
void collect(const DBusMenuLayout& layout, std::set<int>& numbers) {
    for (const auto& child : layout.children) {
        require(child.id > 0 && numbers.insert(child.id).second, "a number twice");
        const auto label = child.properties.value(u"label"_s).toString();
        require(label.count(u'_') % 2 == 0, "a name with a mnemonic");
        collect(child, numbers);
    }
}

/// A desktop whose panel asks.
class Host {
public:
    Host(DBusMenu& dBusMenu, fuzz::Reader& input) : menu(dBusMenu), reader(input) {}

    void ask() {
        switch (reader.number(6)) {
        case 0: return layout();
        case 1: menu.GetGroupProperties(anyNumbers(), names()); return;
        case 2: return choose();
        case 3: menu.AboutToShow(anyNumber()); return;
        case 4: return prepare();
        case 5: menu.Event(anyNumber(), event(), {}, 0); return;
        default: return;
        }
    }

private:
    std::set<int> known() {
        DBusMenuLayout all;
        menu.GetLayout(0, -1, {}, all);
        std::set<int> numbers;
        collect(all, numbers);
        return numbers;
    }

    int anyNumber() {
        constexpr std::array extremes{-1, 0, std::numeric_limits<int>::min(),
                                      std::numeric_limits<int>::max()};
        return reader.flag() ? reader.oneOf(extremes) : static_cast<int>(reader.number(32));
    }
    QList<int> anyNumbers() {
        QList<int> numbers;
        for (auto count = reader.number(6); count > 0; --count) numbers.append(anyNumber());
        return numbers;
    }
    QStringList names() {
        const std::array tables{QStringList{}, QStringList{u"label"_s, u"toggle-state"_s},
                                QStringList{u""_s, u"label"_s, u"label"_s}};
        return reader.oneOf(tables);
    }
    QString event() { return reader.flag() ? u"clicked"_s : u"hovered"_s; }

    void layout() {
        const auto numbers = known();
        const auto parent = anyNumber();
        // Any other is answered with an error, for which there must be a bus.
        if (parent != 0 && !numbers.contains(parent)) return;
        DBusMenuLayout some;
        const int depth = anyNumber();
        menu.GetLayout(parent, depth, names(), some);
        require(some.id == parent, "the layout of another item");
        require(depth != 0 || some.children.isEmpty(), "more levels than were asked for");
        std::set<int> below;
        collect(some, below);
        require(std::ranges::includes(numbers, below), "items that are not in the whole");
    }

    void choose() {
        QList<DBusMenuEvent> events;
        for (const auto number : anyNumbers()) events.append({number, event(), {}, 0});
        const auto numbers = known();
        for (const auto unknown : menu.EventGroup(events))
            require(unknown != 0 && !numbers.contains(unknown), "does not know its own item");
    }

    void prepare() {
        QList<int> unknown;
        const auto wanted = anyNumbers();
        const auto changed = menu.AboutToShowGroup(wanted, unknown);
        require(changed.size() + unknown.size() <= wanted.size(), "answers more than was asked");
    }

    DBusMenu& menu;
    fuzz::Reader& reader;
};

} // namespace

void fuzz::run(Bytes input) {
    Reader reader(input);
    FakeUserDefaults defaults;
    FakeDisplays displays;
    FakeLoginItemService loginItem;
    FakeProcessLauncher launcher;
    FakeSystemLog log;
    AppState state(defaults, displays, loginItem, launcher, log);
    DBusMenu menu({.menuNeedsUpdate = [&](Menu& items) { items = StatusMenu::items(state, true); },
                   .choose =
                       [&](const MenuItem& item) {
                           require(item.isEnabled && item.action != MenuAction::none,
                                   "chooses what can't be chosen");
                           const auto id = Uuid::parse(item.representedObject.value_or(""));
                           if (id && item.action == MenuAction::selectProfile)
                               state.switchProfile(*id);
                       }});
    Host host(menu, reader);
    std::uint8_t dongles = 0;
    while (!reader.atEnd()) {
        switch (reader.number(5)) {
        case 0: {
            const auto name = reader.text();
            checkTitle(name);
            if (dongles == most) break;
            const Uuid id{{++dongles}};
            state.dongles.modify([&](auto& list) {
                list.push_back({id, name, DongleConnectionState::connected});
            });
            require(!state.displayName(id).empty(), "a dongle without a name");
            break;
        }
        case 1: state.setNickname(reader.text(), Uuid{{dongles}}); break;
        case 2:
            if (state.profiles->size() < most) state.addProfile(reader.text());
            break;
        case 3: host.ask(); break;
        case 4: runQueued(); break;
        default: break;
        }
    }
    runQueued();
}

} // namespace quenthisar
