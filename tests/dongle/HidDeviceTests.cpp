// SPDX-License-Identifier: MIT
#include "dongle/HidDevice.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace quenthisar::dongle {
namespace {

/// Linux key codes, by number: a is 30, b is 48, left Shift 42, left Control 29, mute 113.
class FakeSink final : public InputSink {
public:
    void key(std::uint8_t code, bool down) override { add(down, std::to_string(code)); }
    void button(std::uint8_t number, bool down) override {
        add(down, "button" + std::to_string(number));
    }
    void move(int dx, int dy) override {
        log += "move" + std::to_string(dx) + "," + std::to_string(dy) + " ";
    }
    void flush() override {}

    std::string take() { return std::exchange(log, {}); }

private:
    void add(bool down, const std::string& what) { log += (down ? "+" : "-") + what + " "; }

    std::string log;
};

constexpr std::uint8_t control = 1;
constexpr std::uint8_t shift = 2;

struct HidDeviceTest : testing::Test {
    std::string apply(const Report& report) {
        device.apply(report);
        return sink.take();
    }

    FakeSink sink;
    HidDevice device{sink};
};

TEST_F(HidDeviceTest, PressesWhatIsNewAndReleasesWhatIsGone) {
    EXPECT_EQ(apply(KeyboardReport{0, {0x04}}), "+30 ");
    EXPECT_EQ(apply(KeyboardReport{0, {0x04, 0x05}}), "+48 ");
    EXPECT_EQ(apply(KeyboardReport{0, {0x05, 0x04}}), "");
    EXPECT_EQ(apply(KeyboardReport{0, {0x05, 0x06}}), "-30 +46 ");
    EXPECT_EQ(apply(KeyboardReport{}), "-48 -46 ");
}

TEST_F(HidDeviceTest, TurnsModifierBitsIntoLeftModifiersBeforeTheKeys) {
    EXPECT_EQ(apply(KeyboardReport{0x0F, {0x04}}), "+29 +42 +56 +125 +30 ");
    EXPECT_EQ(apply(KeyboardReport{shift, {0x04}}), "-29 -56 -125 ");
    EXPECT_EQ(apply(KeyboardReport{}), "-42 -30 ");
}

TEST_F(HidDeviceTest, ComparesButtonsAndMovesAndClicksTheWheel) {
    EXPECT_EQ(apply(MouseReport{.buttons = 1, .dx = -5, .dy = 3}), "+button1 move-5,3 ");
    EXPECT_EQ(apply(MouseReport{.buttons = 6}), "-button1 +button3 +button2 ");
    EXPECT_EQ(apply(MouseReport{.buttons = 6, .wheel = 2}), "+button4 -button4 +button4 -button4 ");
    EXPECT_EQ(apply(MouseReport{.buttons = 0, .wheel = -1}),
              "-button3 -button2 +button5 -button5 ");
}

TEST_F(HidDeviceTest, HoldsOneMediaKeyAtATime) {
    EXPECT_EQ(apply(ConsumerReport{0xE2}), "+113 ");
    EXPECT_EQ(apply(ConsumerReport{0xE9}), "-113 +115 ");
    EXPECT_EQ(apply(ConsumerReport{}), "-115 ");
}

TEST_F(HidDeviceTest, LetsGoOfAMediaKeyWhenAllKeysAreUp) {
    apply(KeyboardReport{control, {0x04}});
    apply(ConsumerReport{0xE9});
    EXPECT_EQ(apply(KeyboardReport{control, {}}), "-30 ");
    EXPECT_EQ(apply(KeyboardReport{}), "-29 -115 ");
    EXPECT_EQ(apply(ConsumerReport{}), "");
}

TEST_F(HidDeviceTest, ReleasesEverythingOnce) {
    apply(KeyboardReport{control, {0x04, 0x05}});
    apply(MouseReport{.buttons = 5});
    apply(ConsumerReport{0xCD});
    device.releaseAll();
    EXPECT_EQ(sink.take(), "-29 -30 -48 -164 -button1 -button2 ");
    device.releaseAll();
    EXPECT_EQ(sink.take(), "");
}

TEST_F(HidDeviceTest, LeavesTheStateAloneForAProbeOrAMalformedPayload) {
    apply(KeyboardReport{0, {0x04}});
    EXPECT_EQ(apply(Probe{}), "");
    EXPECT_EQ(apply(Malformed{"kind 3"}), "");
    EXPECT_EQ(apply(KeyboardReport{}), "-30 ");
}

} // namespace
} // namespace quenthisar::dongle
