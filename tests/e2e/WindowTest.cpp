// SPDX-License-Identifier: MIT
#include "demo/ConfigurationWindow.h"
#include "e2e/WindowFixture.h"

#include <array>
#include <cstdlib>

namespace quenthisar::e2e {

/// The window on a desktop with a window manager.
class WindowOnADesktop : public WindowFixture {
protected:
    void SetUp() override {
        WindowFixture::SetUp();
        if (HasFatalFailure()) return;
        manager = std::make_unique<demo::ChildProcess>(
            u"openbox"_s, QStringList{u"--sm-disable"_s},
            demo::ChildProcess::Environment{{u"DISPLAY"_s, stage->hostDisplay()}});
        ASSERT_TRUE(waitUntil([this] { return hasFrame(); }, soon));
        // The manager puts the windows that are there in an order of its own.
        startOnceMore();
    }
    void TearDown() override {
        manager.reset(); // before its server
        WindowFixture::TearDown();
    }

    xcb_window_t window() const { return demo::configurationWindow(stage->host); }
    bool isOnScreen() const { return window() != XCB_NONE; }
    bool hasKeyboard() const { return demo::focusedWindow(stage->host) == window(); }
    bool hasFrame() const {
        auto* c = stage->host.get();
        auto* tree = xcb_query_tree_reply(c, xcb_query_tree(c, window()), nullptr);
        const bool result = tree && tree->parent != stage->host.root();
        std::free(tree);
        return result;
    }
    /// Of the window's top-left corner on the screen.
    QPoint place() const {
        auto* c = stage->host.get();
        auto* reply = xcb_translate_coordinates_reply(
            c, xcb_translate_coordinates(c, window(), stage->host.root(), 0, 0), nullptr);
        const auto result = reply ? QPoint{reply->dst_x, reply->dst_y} : QPoint{};
        std::free(reply);
        return result;
    }
    /// As by its title.
    void moveWindow(QPoint to) const {
        const std::array values{static_cast<std::uint32_t>(to.x()),
                                static_cast<std::uint32_t>(to.y())};
        xcb_configure_window(stage->host.get(), window(), XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                             values.data());
        xcb_flush(stage->host.get());
    }
    void minimise() const {
        constexpr std::uint32_t iconic = 3; // as WM_STATE has it
        xcb_client_message_event_t message{.response_type = XCB_CLIENT_MESSAGE,
                                           .format = 32,
                                           .sequence = 0,
                                           .window = window(),
                                           .type = stage->host.atom("WM_CHANGE_STATE"),
                                           .data = {}};
        message.data.data32[0] = iconic;
        xcb_send_event(stage->host.get(), 0, stage->host.root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(stage->host.get());
    }
    /// As the user does who sees no window.
    void startOnceMore() const { EXPECT_EQ(stage->rig.startOnceMore()->waitForEnd(soon), 0); }

    std::unique_ptr<demo::ChildProcess> manager;
};

TEST_F(WindowOnADesktop, ComesBackAsItWasByASecondStart) {
    ASSERT_TRUE(openTab(u"Profiles"_s));
    ASSERT_TRUE(fill(u"New profile name"_s, u"Half a na"_s));
    const auto before = place();
    moveWindow({40, 90});
    ASSERT_TRUE(waitUntil([&] { return place() != before; }, soon));
    const auto corner = place();

    const auto expectItBack = [&] {
        startOnceMore();
        EXPECT_TRUE(waitUntil([&] { return isOnScreen() && hasKeyboard(); }, soon));
        EXPECT_TRUE(waitUntil([&] { return place() == corner; }, soon));
        EXPECT_TRUE(becomes(Role::field, u"New profile name"_s,
                            [](const Accessible& field) { return field.text() == u"Half a na"; }));
    };
    demo::askToClose(stage->host, window());
    ASSERT_TRUE(waitUntil([&] { return !isOnScreen(); }, soon));
    EXPECT_TRUE(stage->rig.quenthisar().isRunning());
    expectItBack();

    minimise();
    ASSERT_TRUE(waitUntil([&] { return !isOnScreen(); }, soon));
    expectItBack();

    // Beneath the desk, which a click brings to the front.
    moveTo({1240, 780});
    ASSERT_TRUE(demo::retry(
        [&] {
            stage->hands.click(1);
            return waitUntil([&] { return !hasKeyboard(); }, 500ms);
        },
        soon));
    expectItBack();
    EXPECT_TRUE(openTab(u"Settings"_s)) << "it is above the desk";
}

} // namespace quenthisar::e2e
