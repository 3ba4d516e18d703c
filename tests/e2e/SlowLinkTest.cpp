// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

#include <QElapsedTimer>
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
        const bool isKey = reports[i].isKeyboard();
        if (!isKey && !reports[i].isMouse()) continue;
        auto& held = isKey ? key : button;
        const auto now = reports[i].field(isKey ? u"keys"_s : u"buttons"_s);
        if (now != held && now != u"none") result.append({now, i});
        held = now;
    }
    return result;
}

} // namespace

using SlowLink = StageFixture;

TEST_F(SlowLink, CostsLittleAndLosesOrderOfNothingWhileItTakesNothing) {
    constexpr long memoryLimit = 4'000'000;
    constexpr qsizetype motionLimit = 64; // that wait
    constexpr qsizetype lastMoves = 2;    // which may come when the others go already
    const auto keys = u"abcdefghijklmnopqrstuvwxyz"_s;
    const auto before = residentSize(stage->rig.quenthisar().pid());
    ask(u"SetReading"_s, {firstDongle, false});

    QStringList sent;
    qsizetype moves = 0;
    QElapsedTimer elapsed;
    elapsed.start();
    while (elapsed.elapsed() < 5'000) {
        const bool isClick = sent.size() % 7 == 6;
        sent.append(isClick ? u"left"_s : QString{keys[sent.size() % keys.size()]});
        if (isClick)
            stage->hands.click(1);
        else
            ASSERT_TRUE(stage->hands.type(sent.back(), 4ms));
        stage->hands.moveBy({3, -2});
        stage->hands.moveBy({-2, 3});
        ++moves;
        QThread::msleep(6);
    }
    if (sanitizerFactor == 1) {
        EXPECT_LT(residentSize(stage->rig.quenthisar().pid()) - before, memoryLimit);
    }
    ask(u"SetReading"_s, {firstDongle, true});
    ASSERT_TRUE(stage->hands.type(u"0"_s, 0ms));
    sent.append(u"0"_s);
    ASSERT_TRUE(dongleGets([](const Reports& all) {
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
    EXPECT_LE(late, motionLimit + lastMoves);
    EXPECT_LT(motion, moves);
    EXPECT_TRUE(nothingIsHeldOnTarget());
    EXPECT_EQ(inputOnHost(), QStringList{});
}

} // namespace quenthisar::e2e
