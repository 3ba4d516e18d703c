// SPDX-License-Identifier: MIT
#include "dongle/HidDevice.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace quenthisar::dongle {
namespace {

/// Linux key codes, by number: a is 30, b is 48, left Shift 42, left Control 29, mute 113.
class HidDeviceTest : public testing::Test, InputSink {
protected:
    void key(std::uint8_t code, bool down) override { add(down, std::to_string(code)); }
    void button(std::uint8_t number, bool down) override {
        add(down, "button" + std::to_string(number));
    }
    void move(int dx, int dy) override {
        log += "move" + std::to_string(dx) + "," + std::to_string(dy) + " ";
    }
    void flush() override {}

    std::string apply(const Report& report) {
        device.apply(report);
        return std::exchange(log, {});
    }

    HidDevice device{*this};
    std::string log;

private:
    void add(bool down, const std::string& what) { log += (down ? "+" : "-") + what + " "; }
};

TEST_F(HidDeviceTest, PressesWhatIsNewAndReleasesWhatIsGone) {
    EXPECT_EQ(apply(KeyboardReport{0, {0x04}}), "+30 ");
    EXPECT_EQ(apply(Probe{}) + apply(Malformed{"kind 3"}), "");
    EXPECT_EQ(apply(KeyboardReport{0, {0x05, 0x04}}), "+48 ");
    EXPECT_EQ(apply(KeyboardReport{0x0F, {0x05, 0x06}}), "+29 +42 +56 +125 -30 +46 ");
    EXPECT_EQ(apply(KeyboardReport{2, {}}), "-29 -56 -125 -48 -46 ");
    EXPECT_EQ(apply(MouseReport{.buttons = 1, .dx = -5, .dy = 3}), "+button1 move-5,3 ");
    EXPECT_EQ(apply(MouseReport{.buttons = 6, .wheel = 2}),
              "-button1 +button3 +button2 +button4 -button4 +button4 -button4 ");
    EXPECT_EQ(apply(MouseReport{.wheel = -1}), "-button3 -button2 +button5 -button5 ");
}

TEST_F(HidDeviceTest, HoldsOneMediaKeyUntilAnotherOrAllKeysUp) {
    EXPECT_EQ(apply(ConsumerReport{0xE2}), "+113 ");
    EXPECT_EQ(apply(ConsumerReport{0xE9}), "-113 +115 ");
    EXPECT_EQ(apply(KeyboardReport{1, {0x04}}), "+29 +30 ");
    EXPECT_EQ(apply(KeyboardReport{1, {}}), "-30 ");
    EXPECT_EQ(apply(KeyboardReport{}), "-29 -115 ");
}

TEST_F(HidDeviceTest, ReleasesEverythingOnce) {
    apply(KeyboardReport{1, {0x04, 0x05}});
    apply(MouseReport{.buttons = 5});
    apply(ConsumerReport{0xCD});
    device.releaseAll();
    device.releaseAll();
    EXPECT_EQ(log, "-29 -30 -48 -164 -button1 -button2 ");
}

} // namespace
} // namespace quenthisar::dongle
