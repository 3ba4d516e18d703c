// SPDX-License-Identifier: MIT
#include "Linux/AutostartItem.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace quenthisar {
namespace {

struct Autostart : testing::Test {
    QTemporaryDir home;
    QString path = home.filePath(QStringLiteral("autostart/entry.desktop"));
    AutostartItem item{path, QStringLiteral("/opt/my \"$apps\"/50%/quenthisar")};
};

TEST_F(Autostart, IsAFileThatComesAndGoes) {
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

TEST_F(Autostart, IsNotReadFromAPipeButReplacesIt) {
    ASSERT_TRUE(QDir().mkpath(home.filePath(QStringLiteral("autostart"))));
    ASSERT_EQ(::mkfifo(QFile::encodeName(path), 0600), 0);
    EXPECT_EQ(item.status(), LoginItemStatus::notFound);
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
}

TEST_F(Autostart, SaysWhyItCannotBeWritten) {
    AutostartItem nowhere(QStringLiteral("/proc/nowhere/entry.desktop"), {});
    EXPECT_NE(nowhere.registerItem(), std::nullopt);
    EXPECT_EQ(nowhere.status(), LoginItemStatus::notRegistered);
}

} // namespace
} // namespace quenthisar
