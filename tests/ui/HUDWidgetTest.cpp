// SPDX-License-Identifier: MIT
#include "UI/Qt/HUDWidget.h"

#include <QScreen>

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

TEST(HUDWidget, FindsRoomOnItsDisplayHoweverLongTheName) {
    const HUDWidget brief({"Desk (9F3A)"}), lengthy({std::string(200, 'W') + " (9F3A)"});
    EXPECT_EQ(lengthy.sizeHint().width(), lengthy.screen()->size().width() - 24);
    EXPECT_EQ(lengthy.sizeHint().height(), brief.sizeHint().height());
}

} // namespace
} // namespace quenthisar
