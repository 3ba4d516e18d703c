// SPDX-License-Identifier: MIT
#include "Linux/AutostartItem.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

TEST(AutostartItem, IsAFileThatComesAndGoes) {
    const QTemporaryDir home;
    const auto path = home.filePath(QStringLiteral("autostart/entry.desktop"));
    AutostartItem item(path, QStringLiteral("/opt/my \"$apps\"/50%/quenthisar"));
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const auto text = file.readAll();
    EXPECT_TRUE(text.contains("Exec=\"/opt/my \\\\\"\\\\$apps\\\\\"/50%%/quenthisar\"\n"))
        << text.data();
    // Nothing is started once the program is gone.
    EXPECT_TRUE(text.contains("TryExec=/opt/my \"$apps\"/50%/quenthisar\n")) << text.data();
    file.write("Hidden = true\n[Desktop Action x]\nHidden=false\n");
    file.close();
    EXPECT_EQ(item.status(), LoginItemStatus::requiresApproval) << "the user switched it off";

    EXPECT_EQ(item.unregisterItem(), std::nullopt);
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
    EXPECT_NE(item.unregisterItem(), std::nullopt) << "there is nothing to take away";
}

} // namespace
} // namespace quenthisar
