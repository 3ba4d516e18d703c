// SPDX-License-Identifier: MIT
#include "linux/XStage.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <array>

namespace quenthisar::test {

Neighbour::Neighbour() {
    auto* c = connection->get();
    // Motion is as a device reports it.
    xcb_change_pointer_control(c, 1, 1, 1000, true, true);
    const auto window = xcb_generate_id(c);
    const auto size = connection->rootSize();
    const std::array<std::uint32_t, 2> values{
        1, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_BUTTON_PRESS |
               XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, connection->root(), 0, 0, size.width,
                      size.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
    xcb_map_window(c, window);
    xcb_set_input_focus(c, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    seen();
}

std::vector<int> Neighbour::seen() const {
    query(); // what comes before the answer has arrived with it
    std::vector<int> types;
    for (XOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection->get())}; event;
         event.reset(xcb_poll_for_event(connection->get()))) {
        const int type = event->response_type & 0x7F;
        if (XCB_KEY_PRESS <= type && type <= XCB_MOTION_NOTIFY) types.push_back(type);
    }
    return types;
}

bool Neighbour::grabAll() const {
    auto* c = connection->get();
    const auto pointer = xcb_grab_pointer(c, false, connection->root(), XCB_EVENT_MASK_BUTTON_PRESS,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE,
                                          XCB_NONE, XCB_CURRENT_TIME);
    const auto keyboard = xcb_grab_keyboard(c, false, connection->root(), XCB_CURRENT_TIME,
                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const XOwned<xcb_grab_pointer_reply_t> first{xcb_grab_pointer_reply(c, pointer, nullptr)};
    const XOwned<xcb_grab_keyboard_reply_t> second{xcb_grab_keyboard_reply(c, keyboard, nullptr)};
    return first && second && first->status == XCB_GRAB_STATUS_SUCCESS &&
           second->status == XCB_GRAB_STATUS_SUCCESS;
}

void Neighbour::ungrabAll() const {
    xcb_ungrab_pointer(connection->get(), XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(connection->get(), XCB_CURRENT_TIME);
    query();
}

void Neighbour::moveTo(int x, int y) const {
    xcb_test_fake_input(connection->get(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME,
                        connection->root(), static_cast<std::int16_t>(x),
                        static_cast<std::int16_t>(y), 0);
    query();
}

XOwned<xcb_query_pointer_reply_t> Neighbour::query() const {
    auto* c = connection->get();
    return XOwned<xcb_query_pointer_reply_t>{
        xcb_query_pointer_reply(c, xcb_query_pointer(c, connection->root()), nullptr)};
}

void Neighbour::kill(std::uint32_t resource) const {
    xcb_kill_client(connection->get(), resource);
    query();
}

XStage::Environment::Environment(const demo::XServer& server) {
    demo::useKeymapOfDesktops(server);
    qputenv("DISPLAY", server.display().toUtf8());
}

XStage::XStage() : server(demo::startXorg(folder.path())) {
    displays.screens();
    tap = taps.tapCreate(~std::uint64_t{0}, [this](const TapEvent& event) {
        delivered.push_back(event);
        onEvent(event);
        return TapVerdict::swallow;
    });
    source = taps.addToMainRunLoop(*tap);
    tap->enable(true);
    // Taking over waits for replies: after it the server knows what the tap wants.
    takeOver();
    giveBack();
    delivered.clear();
}

void XStage::run(const char* command) const {
    const auto words = QProcess::splitCommand(QString::fromLatin1(command));
    demo::ChildProcess process(words.front(), words.mid(1));
    EXPECT_EQ(process.waitForEnd(std::chrono::seconds(20)), 0) << command;
}

void XStage::giveBack() {
    cursor.associateMouseAndMouseCursorPosition(true);
    cursor.displayShowCursor();
    // Nobody waits for the server to do it, except us.
    EXPECT_TRUE(runUntil([&] { return neighbour.grabAll(); }));
    neighbour.ungrabAll();
}

QPoint XStage::motion() const {
    QPoint sum;
    for (const auto& event : delivered)
        sum += {static_cast<int>(event.deltaX), static_cast<int>(event.deltaY)};
    return sum;
}

std::vector<EventType> XStage::types() const {
    std::vector<EventType> result;
    for (const auto& event : delivered) result.push_back(event.type);
    return result;
}

std::vector<EventType> XStage::typesWithoutMotion() const {
    auto result = types();
    std::erase(result, EventType::mouseMoved);
    return result;
}

} // namespace quenthisar::test
