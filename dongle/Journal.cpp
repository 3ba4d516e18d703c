// SPDX-License-Identifier: MIT
#include "Journal.h"

#include <QCoreApplication>
#include <QTimer>

#include <atomic>
#include <cstdio>
#include <mutex>
#include <utility>
#include <vector>

namespace quenthisar::dongle {

using namespace Qt::StringLiterals;

namespace {

QString escaped(const QString& text) {
    QString result;
    for (const QChar c : text) {
        if (c == u'"' || c == u'\\') {
            result += u'\\';
            result += c;
        } else if (c.isPrint() || c.isSurrogate()) {
            result += c;
        } else {
            result += u"\\u%1"_s.arg(static_cast<uint>(c.unicode()), 4, 16, QChar{u'0'});
        }
    }
    return result;
}

/// Lines on their way to standard output.
class Waiting {
public:
    struct Line {
        std::function<std::string()> what;
        Origin origin; // null: a line without a time
        Clock::time_point time;

        void appendTo(std::string& text) const {
            using namespace std::chrono;
            if (origin) {
                const auto at = duration_cast<microseconds>(time.time_since_epoch());
                text.append(std::to_string(at.count())).append(*origin);
            }
            text.append(what()).append(1, '\n');
        }
    };

    void add(Line line) {
        const std::lock_guard lock{mutex};
        lines.push_back(std::move(line));
        if (delay.count() == 0 || lines.size() > most)
            write();
        else if (!timer.exchange(true))
            QMetaObject::invokeMethod(qApp, [this] {
                QTimer::singleShot(delay, [this] {
                    timer = false;
                    flush();
                });
            });
    }
    void flush() {
        const std::lock_guard lock{mutex};
        write();
    }

    std::chrono::milliseconds delay{0};

private:
    void write() {
        std::string text;
        for (const auto& line : lines) line.appendTo(text);
        lines.clear();
        // A reader that went away is no reason to stop.
        static_cast<void>(std::fwrite(text.data(), 1, text.size(), stdout));
        static_cast<void>(std::fflush(stdout));
    }

    static constexpr std::size_t most = 1024;

    std::vector<Line> lines;
    std::atomic<bool> timer = false;
    std::mutex mutex;
};

Waiting& waiting() {
    static Waiting lines;
    return lines;
}

} // namespace

void journal(const QString& who, const QString& name, const QString& what, Clock::time_point time) {
    journal(
        journalOrigin(who, name), [text = what.toStdString()] { return text; }, time);
}

Origin journalOrigin(const QString& who, const QString& name) {
    return std::make_shared<const std::string>(' ' + who.toStdString() + " \"" +
                                               escaped(name).toStdString() + "\" ");
}

void journal(Origin origin, std::function<std::string()> what, Clock::time_point time) {
    waiting().add({.what = std::move(what), .origin = std::move(origin), .time = time});
}

void delayJournal(std::chrono::milliseconds delay) {
    waiting().delay = delay;
}

void flushJournal() {
    waiting().flush();
}

void printLine(const QString& line) {
    waiting().add({.what = [text = line.toStdString()] { return text; }, .origin = {}, .time = {}});
}

} // namespace quenthisar::dongle
