// SPDX-License-Identifier: MIT
#include "DataFile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quenthisar::bench {

namespace {

using namespace Qt::StringLiterals;

double microseconds(nanoseconds time) {
    return static_cast<double>(time.count()) / 1000;
}

QJsonArray array(const std::vector<nanoseconds>& times) {
    QJsonArray result;
    for (const auto time : times) result += microseconds(time);
    return result;
}

QJsonValue count(std::size_t number) {
    return static_cast<qint64>(number);
}

QJsonObject object(const Figure& row) {
    QJsonObject result{{u"load"_s, QString::fromUtf8(row.load.name)},
                       {u"motionRate"_s, row.load.motionRate},
                       {u"otherRate"_s, row.load.otherRate},
                       {u"subject"_s, QString::fromStdString(row.subject)},
                       {u"seconds"_s, microseconds(row.duration) / 1e6},
                       {u"events"_s, count(row.events)},
                       {u"otherEvents"_s, count(row.otherEvents)},
                       {u"lost"_s, count(row.lost)},
                       {u"wrong"_s, count(row.wrong)},
                       {u"serversMicroseconds"_s, microseconds(row.servers)},
                       {u"latenciesMicroseconds"_s, array(row.latencies)},
                       {u"floodMotionMicroseconds"_s, array(row.floodMotion)}};
    if (!row.latencies.empty()) {
        result.insert(u"medianMicroseconds"_s, microseconds(row.latency(0.5)));
        result.insert(u"percentile99Microseconds"_s, microseconds(row.latency(0.99)));
    }
    if (row.processor) result.insert(u"processorMicroseconds"_s, microseconds(*row.processor));
    if (row.payloads) {
        result.insert(u"dongleMicroseconds"_s, microseconds(row.dongle));
        result.insert(u"payloads"_s, count(*row.payloads));
    }
    return result;
}

} // namespace

bool writeData(const QString& path, const Figures& figures, const std::vector<Limit>& limits) {
    QJsonArray rows, usages, bounds;
    for (const auto& row : figures.rows) rows += object(row);
    for (const auto& usage : figures.usages)
        usages += QJsonObject{{u"name"_s, QString::fromStdString(usage.name)},
                              {u"percentOfCore"_s, usage.percent()},
                              {u"seconds"_s, microseconds(usage.duration) / 1e6}};
    for (const auto& limit : limits)
        bounds += QJsonObject{{u"what"_s, QString::fromStdString(limit.what)},
                              {u"measured"_s, limit.measured},
                              {u"allowed"_s, limit.allowed},
                              {u"met"_s, limit.isMet()}};
    const auto bytes =
        QJsonDocument{QJsonObject{{u"loads"_s, rows}, {u"usage"_s, usages}, {u"limits"_s, bounds}}}
            .toJson(QJsonDocument::Compact);
    QFile file{path};
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}

} // namespace quenthisar::bench
