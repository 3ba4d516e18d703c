// SPDX-License-Identifier: MIT
#include "linux/XStage.h"

#include <QApplication>

#include <gtest/gtest.h>
#include <xcb/xtest.h>

#include <algorithm>

namespace quenthisar::test {

namespace {

class QtEnvironment final : public testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        application = std::make_unique<QApplication>(argumentCount, list);
    }
    void TearDown() override { application.reset(); }

private:
    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    std::unique_ptr<QApplication> application;
};

[[maybe_unused]] const auto* const environment =
    testing::AddGlobalTestEnvironment(std::make_unique<QtEnvironment>().release());

} // namespace

bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds limit) {
    const auto start = std::chrono::steady_clock::now();
    QTimer wakeUp;
    wakeUp.start(20);
    while (!done()) {
        if (std::chrono::steady_clock::now() - start > limit) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

bool Injector::grabAll() const {
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

void Injector::ungrabAll() const {
    xcb_ungrab_pointer(connection->get(), XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(connection->get(), XCB_CURRENT_TIME);
    sync();
}

Injector::Pointer Injector::pointer() const {
    const XOwned<xcb_query_pointer_reply_t> reply{xcb_query_pointer_reply(
        connection->get(), xcb_query_pointer(connection->get(), connection->root()), nullptr)};
    return reply ? Pointer{reply->root_x, reply->root_y} : Pointer{-1, -1};
}

int Injector::modifiers() const {
    const XOwned<xcb_query_pointer_reply_t> reply{xcb_query_pointer_reply(
        connection->get(), xcb_query_pointer(connection->get(), connection->root()), nullptr)};
    return reply ? reply->mask & 0xFF : -1;
}

void Injector::killAllBut(const Witness& witness) const {
    const auto idsOfAClient = xcb_get_setup(connection->get())->resource_id_mask + 1;
    const std::array survivors{xcb_generate_id(connection->get()) / idsOfAClient,
                               witness.window / idsOfAClient};
    // A client dies with any of its resources.
    for (xcb_window_t client = 1; client < 8; ++client)
        for (xcb_window_t resource = 0; resource < 8; ++resource)
            if (std::ranges::count(survivors, client) == 0)
                xcb_kill_client(connection->get(), client * idsOfAClient + resource);
    sync();
}

void Injector::sync() const {
    const XOwned<xcb_get_input_focus_reply_t> reply{xcb_get_input_focus_reply(
        connection->get(), xcb_get_input_focus(connection->get()), nullptr)};
}

void Injector::fake(std::uint8_t type, std::uint8_t detail, int x, int y) const {
    const bool isPosition = type == XCB_MOTION_NOTIFY && detail == 0;
    xcb_test_fake_input(connection->get(), type, detail, XCB_CURRENT_TIME,
                        isPosition ? connection->root() : xcb_window_t{XCB_WINDOW_NONE},
                        static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    sync();
}

Witness::Witness() {
    auto* c = connection->get();
    window = xcb_generate_id(c);
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

std::vector<int> Witness::seen() const {
    auto* c = connection->get();
    const XOwned<xcb_get_input_focus_reply_t> sync{
        xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)};
    std::vector<int> types;
    for (XOwned<xcb_generic_event_t> event{xcb_poll_for_event(c)}; event;
         event.reset(xcb_poll_for_event(c))) {
        const int type = event->response_type & 0x7F;
        if (XCB_KEY_PRESS <= type && type <= XCB_MOTION_NOTIFY) types.push_back(type);
    }
    return types;
}

XStage::Environment::Environment(const demo::XServer& server) {
    qputenv("DISPLAY", server.display().toUtf8());
    qunsetenv("WAYLAND_DISPLAY");
    qunsetenv("XDG_SESSION_TYPE");
}

XStage::XStage() {
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

XStage::~XStage() {
    source.reset();
    tap.reset();
}

void XStage::setMonitor(const QString& name, const QString& geometry, const QString& output) const {
    demo::ChildProcess program(QStringLiteral("xrandr"),
                               {QStringLiteral("-d"), server.display(),
                                QStringLiteral("--setmonitor"), u'*' + name, geometry, output});
    EXPECT_EQ(program.waitForEnd(std::chrono::seconds(20)), 0);
}

void XStage::takeOver() {
    cursor.associateMouseAndMouseCursorPosition(false);
    cursor.displayHideCursor();
}

void XStage::giveBack() {
    cursor.associateMouseAndMouseCursorPosition(true);
    cursor.displayShowCursor();
    // Nobody waits for the server to do it, except us.
    EXPECT_TRUE(runUntil([&] { return hands.grabAll(); }));
    hands.ungrabAll();
}

bool XStage::waitFor(EventType type) {
    return runUntil([&] { return sees(type); });
}

Motion XStage::motion() const {
    Motion sum;
    for (const auto& event : delivered) {
        sum.x += event.deltaX;
        sum.y += event.deltaY;
    }
    return sum;
}

std::vector<EventType> XStage::types() const {
    std::vector<EventType> result;
    for (const auto& event : delivered) result.push_back(event.type);
    return result;
}

bool XStage::sees(EventType type) const {
    return std::ranges::count(delivered, type, &TapEvent::type) > 0;
}

} // namespace quenthisar::test
