// SPDX-License-Identifier: MIT
#include "Linux/XKeyboard.h"

#include "Platform/EventTap.h"

#include <array>
#include <bit>
#include <string_view>
#include <utility>

namespace quenthisar {

namespace {

constexpr std::uint16_t coreKeyboard = XCB_XKB_ID_USE_CORE_KBD;
constexpr std::uint16_t watchedEvents = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY |
                                        XCB_XKB_EVENT_TYPE_MAP_NOTIFY |
                                        XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
constexpr std::uint16_t watchedMapParts =
    XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_VIRTUAL_MODS |
    XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
constexpr std::uint16_t watchedState = XCB_XKB_STATE_PART_MODIFIER_STATE;

/// Shift, Control, Caps Lock, Shift Lock, Meta, Alt, Super and Hyper; the keys that shift levels
/// and groups; Mode Switch.
constexpr bool isModifierSymbol(xcb_keysym_t symbol) {
    return (0xFFE1 <= symbol && symbol <= 0xFFEE) || (0xFE01 <= symbol && symbol <= 0xFE13) ||
           symbol == 0xFF7E;
}

struct VirtualModifier {
    std::string_view name;
    std::uint8_t bits = 0;
};

} // namespace

bool XKeyboard::open(const XConnection& source) {
    connection = &source;
    const auto* extension = source.extension(xcb_xkb_id);
    if (!extension) return false;
    firstEvent = extension->first_event;
    const XOwned<xcb_xkb_use_extension_reply_t> use{xcb_xkb_use_extension_reply(
        source.get(), xcb_xkb_use_extension(source.get(), 1, 0), nullptr)};
    if (!use || !use->supported) return false;
    select();
    readState();
    return true;
}

void XKeyboard::select() {
    xcb_xkb_select_events_details_t details{};
    details.affectNewKeyboard = details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
    details.affectState = details.stateDetails = watchedState;
    xcb_xkb_select_events_aux(connection->get(), coreKeyboard, watchedEvents, 0, 0, watchedMapParts,
                              watchedMapParts, &details);
}

XKeyboard::Change XKeyboard::take(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7F) != firstEvent) return Change::none;
    const auto& state = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
    if (state.xkbType != XCB_XKB_STATE_NOTIFY) {
        stale = true;
        return Change::keymap;
    }
    // What was sent before the state was read is older than what was read.
    if (oldest.isBefore(event.full_sequence)) return Change::none;
    return std::exchange(modifiers, state.mods) != state.mods ? Change::modifiers : Change::none;
}

std::uint64_t XKeyboard::flagsOf(std::uint32_t mask) {
    readTables();
    std::uint64_t result = 0;
    if (mask & XCB_MOD_MASK_LOCK) result |= EventFlags::alphaShift;
    if (mask & XCB_MOD_MASK_SHIFT) result |= EventFlags::shift;
    if (mask & XCB_MOD_MASK_CONTROL) result |= EventFlags::control;
    if (mask & bits.option) result |= EventFlags::option;
    if (mask & bits.command) result |= EventFlags::command;
    return result;
}

std::vector<std::uint32_t> XKeyboard::masksOf(std::uint64_t flags) {
    readTables();
    const std::uint32_t locks = XCB_MOD_MASK_LOCK | bits.numLock;
    const std::uint32_t known =
        locks | XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | bits.option | bits.command;
    std::vector<std::uint32_t> masks;
    for (std::uint32_t mask = 0; mask <= 0xFF; ++mask)
        if ((mask & ~known) == 0 && flagsOf(mask & ~locks) == flags) masks.push_back(mask);
    return masks;
}

bool XKeyboard::isModifierKey(std::uint32_t keyCode) {
    readTables();
    return keyCode < modifierKeys.size() && modifierKeys[keyCode];
}

void XKeyboard::keepLocks() {
    if (const auto state = readState()) keptLocks = state->lockedMods;
}

void XKeyboard::restoreLocks() {
    const auto kept = std::exchange(keptLocks, std::nullopt);
    if (!kept) return;
    readTables();
    const auto locks = static_cast<std::uint8_t>(XCB_MOD_MASK_LOCK | bits.numLock);
    xcb_xkb_latch_lock_state(connection->get(), coreKeyboard, locks, *kept & locks, false, 0, 0,
                             false, 0);
}

void XKeyboard::readTables() {
    if (!std::exchange(stale, false)) return;
    readModifierBits();
    readModifierKeys();
}

XOwned<xcb_xkb_get_state_reply_t> XKeyboard::readState() {
    const auto cookie = xcb_xkb_get_state(connection->get(), coreKeyboard);
    XOwned<xcb_xkb_get_state_reply_t> state{
        xcb_xkb_get_state_reply(connection->get(), cookie, nullptr)};
    if (state) {
        modifiers = state->mods;
        oldest.set(cookie.sequence);
    }
    return state;
}

void XKeyboard::readModifierBits() {
    bits = {};
    auto* c = connection->get();
    const auto namesCookie =
        xcb_xkb_get_names(c, coreKeyboard, XCB_XKB_NAME_DETAIL_VIRTUAL_MOD_NAMES);
    const auto mapCookie = xcb_xkb_get_map(c, coreKeyboard, XCB_XKB_MAP_PART_VIRTUAL_MODS, 0, 0, 0,
                                           0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    const XOwned<xcb_xkb_get_names_reply_t> names{xcb_xkb_get_names_reply(c, namesCookie, nullptr)};
    const XOwned<xcb_xkb_get_map_reply_t> map{xcb_xkb_get_map_reply(c, mapCookie, nullptr)};
    if (!names || !map) return;

    xcb_xkb_get_names_value_list_t nameList{};
    xcb_xkb_get_names_value_list_unpack(xcb_xkb_get_names_value_list(names.get()), names->nTypes,
                                        names->indicators, names->virtualMods, names->groupNames,
                                        names->nKeys, names->nKeyAliases, names->nRadioGroups,
                                        names->which, &nameList);
    xcb_xkb_get_map_map_t parts{};
    xcb_xkb_get_map_map_unpack(xcb_xkb_get_map_map(map.get()), map->nTypes, map->nKeySyms,
                               map->nKeyActions, map->totalActions, map->totalKeyBehaviors,
                               map->virtualMods, map->totalKeyExplicit, map->totalModMapKeys,
                               map->totalVModMapKeys, map->present, &parts);
    const auto* nameOf = nameList.virtualModNames;
    const auto* bitsOf = xcb_xkb_get_map_map_vmods_rtrn(&parts);
    if (!nameOf || !bitsOf) return;

    std::array<VirtualModifier, 6> wanted{
        {{"Alt"}, {"LevelThree"}, {"Super"}, {"Hyper"}, {"Meta"}, {"NumLock"}}};
    for (auto& modifier : wanted) {
        const auto atom = connection->atom(modifier.name);
        if (atom == XCB_ATOM_NONE) continue;
        // Each list holds one entry for each bit that is set in its own mask.
        for (unsigned number = 0; number < 16; ++number) {
            const auto bit = 1U << number, lower = bit - 1;
            if (!(names->virtualMods & bit) || !(map->virtualMods & bit)) continue;
            if (nameOf[std::popcount(names->virtualMods & lower)] == atom)
                modifier.bits = bitsOf[std::popcount(map->virtualMods & lower)];
        }
    }
    const auto& [alt, levelThree, super, hyper, meta, numLock] = wanted;
    bits.option = alt.bits | levelThree.bits;
    // Where the Super key is called Meta, its bit is that of no Alt key.
    bits.command =
        super.bits | ((hyper.bits | meta.bits) & static_cast<std::uint8_t>(~bits.option));
    bits.numLock = numLock.bits;
}

void XKeyboard::readModifierKeys() {
    modifierKeys.reset();
    auto* c = connection->get();
    const auto cookie = xcb_xkb_get_map(c, coreKeyboard, XCB_XKB_MAP_PART_KEY_SYMS, 0, 0, 0, 0, 0,
                                        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    const XOwned<xcb_xkb_get_map_reply_t> map{xcb_xkb_get_map_reply(c, cookie, nullptr)};
    if (!map) return;
    xcb_xkb_get_map_map_t parts{};
    xcb_xkb_get_map_map_unpack(xcb_xkb_get_map_map(map.get()), map->nTypes, map->nKeySyms,
                               map->nKeyActions, map->totalActions, map->totalKeyBehaviors,
                               map->virtualMods, map->totalKeyExplicit, map->totalModMapKeys,
                               map->totalVModMapKeys, map->present, &parts);
    unsigned keyCode = map->firstKeySym;
    for (auto keys = xcb_xkb_get_map_map_syms_rtrn_iterator(map.get(), &parts);
         keys.rem > 0 && keyCode < modifierKeys.size();
         xcb_xkb_key_sym_map_next(&keys), ++keyCode) {
        const auto* symbols = xcb_xkb_key_sym_map_syms(keys.data);
        // The first level of each group: a row of `width` symbols.
        for (unsigned place = 0; place < keys.data->nSyms; place += keys.data->width)
            if (isModifierSymbol(symbols[place])) modifierKeys.set(keyCode);
    }
}

} // namespace quenthisar
