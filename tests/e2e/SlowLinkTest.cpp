// SPDX-License-Identifier: MIT
#include "e2e/FaultFixture.h"

#include <QThread>

#include <fstream>
#include <unistd.h>

namespace quenthisar::e2e {

namespace {

/// Bytes in memory.
long residentSize(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/statm");
    long total = 0, resident = 0;
    file >> total >> resident;
    return resident * ::sysconf(_SC_PAGESIZE);
}

bool isMotion(const ReportLine& report) {
    return report.isMouse() && !report.motion().isNull();
}

/// What was pressed, key or button, in order; with each the number of its report.
struct Press {
    QString what;
    qsizetype report;
};

QList<Press> pressesIn(const QList<ReportLine>& reports) {
    QList<Press> result;
    QString key, button;
    for (qsizetype i = 0; i < reports.size(); ++i) {
        const auto& report = reports[i];
        if (!report.isKeyboard() && !report.isMouse()) continue;
        auto& held = report.isKeyboard() ? key : button;
        const auto now =
            report.field(report.isKeyboard() ? QStringLiteral("keys") : QStringLiteral("buttons"));
        if (now != held && now != u"none") result.append({now, i});
        held = now;
    }
    return result;
}

} // namespace

using SlowLink = FaultFixture;

TEST_F(SlowLink, CostsLittleAndLosesOrderOfNothingWhileItTakesNothing) {
    constexpr auto silence = 5s;
    constexpr long memoryLimit = 4'000'000;
    constexpr qsizetype motionLimit = 64; // that wait
    const auto keys = QStringLiteral("abcdefghijklmnopqrstuvwxyz");
    const auto before = residentSize(stage->rig.quenthisar().pid());
    ask(QStringLiteral("SetReading"), {firstDongle, false});

    QStringList sent;
    qsizetype moves = 0;
    QElapsedTimer elapsed;
    elapsed.start();
    while (std::chrono::milliseconds{elapsed.elapsed()} < silence) {
        const auto letter = keys[sent.size() % keys.size()];
        if (sent.size() % 7 == 6) {
            stage->hands.click(1);
            sent.append(QStringLiteral("left"));
        } else {
            ASSERT_TRUE(stage->hands.type(letter, 4ms));
            sent.append(letter);
        }
        stage->hands.moveBy({3, -2});
        stage->hands.moveBy({-2, 3});
        ++moves;
        QThread::msleep(6);
    }
    if (sanitizerFactor == 1) {
        EXPECT_LT(residentSize(stage->rig.quenthisar().pid()) - before, memoryLimit);
    }
    ask(QStringLiteral("SetReading"), {firstDongle, true});
    ASSERT_TRUE(stage->hands.type(QStringLiteral("0"), 0ms));
    sent.append(QStringLiteral("0"));
    ASSERT_TRUE(dongleGets([](const auto& all) {
        const auto presses = pressesIn(all);
        return !presses.empty() && presses.back().what == u"0" && all.back().isAllUp();
    }));

    // What is too old is not typed any more; before and after it, nothing is missing.
    const auto all = reports();
    const auto arrived = pressesIn(all);
    const auto isSent = [](const Press& press, const QString& what) { return press.what == what; };
    const auto gap = std::ranges::mismatch(arrived, sent, isSent).in1 - arrived.begin();
    const auto rest = arrived.size() - gap;
    ASSERT_GT(gap, 30);
    ASSERT_GT(rest, 50);
    EXPECT_LT(arrived.size(), sent.size());
    for (qsizetype i = 0; i < rest; ++i)
        ASSERT_EQ(arrived[gap + i].what, sent[sent.size() - rest + i]) << gap << " + " << i;
    const auto motion = std::ranges::count_if(all, isMotion);
    const auto late = std::count_if(all.begin() + arrived[gap].report, all.end(), isMotion);
    EXPECT_GT(motion, 50);
    EXPECT_LE(late, motionLimit);
    EXPECT_LT(motion, moves);
    EXPECT_TRUE(nothingIsHeldOnTarget());
    EXPECT_EQ(inputOnHost(), QStringList{});
}

} // namespace quenthisar::e2e
