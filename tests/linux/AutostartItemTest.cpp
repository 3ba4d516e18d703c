// SPDX-License-Identifier: MIT
#include "Linux/AutostartItem.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace quenthisar {
namespace {

struct Fixture {
    QTemporaryDir home;
    QString path = home.filePath(QStringLiteral("autostart/entry.desktop"));
    AutostartItem item{path, QStringLiteral("/opt/my \"$apps\"/50%/quenthisar")};

    QByteArray read() const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }
    void append(const QByteArray& text) const {
        QFile file(path);
        file.open(QIODevice::Append);
        file.write(text);
    }
};

TEST(AutostartItem, IsAFileThatComesAndGoes) {
    Fixture f;
    EXPECT_EQ(f.item.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(f.item.registerItem(), std::nullopt);
    EXPECT_EQ(f.item.status(), LoginItemStatus::enabled);
    EXPECT_TRUE(f.read().contains(R"(Exec="/opt/my \\"\\$apps\\"/50%%/quenthisar")"
                                  "\n"))
        << f.read().constData();
    // Nothing is started once the program is gone.
    EXPECT_TRUE(f.read().contains("TryExec=/opt/my \"$apps\"/50%/quenthisar\n"));
    EXPECT_EQ(f.item.unregisterItem(), std::nullopt);
    EXPECT_EQ(f.item.status(), LoginItemStatus::notRegistered);
    EXPECT_NE(f.item.unregisterItem(), std::nullopt) << "there is nothing to take away";
}

TEST(AutostartItem, SwitchedOffByTheUserItAwaitsHisApproval) {
    Fixture f;
    f.item.registerItem();
    f.append("X-GNOME-Autostart-enabled=false\n");
    EXPECT_EQ(f.item.status(), LoginItemStatus::enabled);
    f.append("Hidden = true\n[Desktop Action x]\nHidden=false\n");
    EXPECT_EQ(f.item.status(), LoginItemStatus::requiresApproval);
}

TEST(AutostartItem, APipeInItsPlaceIsNoEntry) {
    Fixture f;
    ASSERT_TRUE(QDir().mkpath(f.home.filePath(QStringLiteral("autostart"))));
    ASSERT_EQ(::mkfifo(QFile::encodeName(f.path), 0600), 0);
    EXPECT_EQ(f.item.status(), LoginItemStatus::notFound);
    EXPECT_EQ(f.item.registerItem(), std::nullopt);
    EXPECT_EQ(f.item.status(), LoginItemStatus::enabled);
}

TEST(AutostartItem, SaysWhyItCannotBeWritten) {
    AutostartItem item(QStringLiteral("/proc/nowhere/entry.desktop"), QStringLiteral("/bin/true"));
    EXPECT_NE(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
}

} // namespace
} // namespace quenthisar
