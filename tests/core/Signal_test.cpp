#include <QDir>
#include <QFile>

#include "Network/SignalPeakWindow.h"
#include "Network/SignalSample.h"
#include "SignalQuality.h"
#include "Statistics/SignalHistory.h"
#include "TempHome.h"

namespace {

QString N(qint64 value) {
    return QString::number(value);
}

// "KEY=number,KEY='text'" as the worker's dictionary.
QVariantMap MapOf(const QString& text) {
    QVariantMap map;
    for (const QString& pair : text.split(',')) {
        const QString value = pair.section('=', 1);
        map.insert(pair.section('=', 0, 0), value.startsWith('\'') ? QVariant(value.mid(1, value.size() - 2))
                                                                   : QVariant(value.toLongLong()));
    }
    return map;
}

// What each reader makes of one input, as text.
std::string Read(const std::string& kind, const std::string& input) {
    QString text = QStringLiteral("fail");
    if (kind == "csq") {
        int csq = -7;
        if (ParseCsqRssi(input, csq)) {
            const int dbm = CsqToDbm(csq);
            text = N(dbm) + "|" + N(SignalSample::barsOf(dbm)) + "|" + SignalSample::qualityWordOf(dbm);
        }
    } else if (kind == "cesq") {
        int rscp = -7, ecno = -7;
        if (ParseCesqAnswer(input, rscp, ecno))
            text = N(RscpToDbm(rscp)) + "|" + N(EcnoToEcIoTenths(ecno));
    } else if (kind == "creg") {
        TSignalReading r;
        if (ParseCregCell(input, r))
            text = N(r.registration) + "|" + N(r.lac) + "|" + N(r.ci) + "|" + N(r.accessTechnology);
    } else {
        const SignalSample s = SignalSample::fromValue(MapOf(QString::fromStdString(input)));
        text = N(s.rssiDbm) + "|" + N(s.rscpDbm) + "|" + N(s.ecIoTenths) + "|" + N(s.bearer) + "|" +
               s.cellText();
    }
    return text.toStdString();
}

TEST(Signal, AnswersAndFiguresWithinTheirRanges) {
    // clang-format off
    const struct { const char* kind; std::string input; const char* expected; } rows[] = {
        {"csq", "\r\n+CSQ: 0,99\r\n\r\nOK\r\n", "-113|0|no signal"}, {"csq", "+CSQ: 31,99", "-51|5|excellent"},
        {"csq", "+CSQ: 2,0", "-109|1|poor"}, {"csq", "+CSQ: 14,99", "-85|3|good"}, {"csq", "+CSQ: 7,99", "-99|1|poor"},
        {"csq", "+CSQ: 99,99", "0|-1|unknown"}, {"csq", "+CSQ: 32,99", "0|-1|unknown"}, {"csq", "+CSQ: -1,99", "0|-1|unknown"},
        {"csq", "+CSQ: 1807229228,99", "0|-1|unknown"}, {"csq", "+CSQ:20,99", "-73|5|excellent"},
        {"csq", "+CREG: 1\r\n+CSQ: 12,99\r\n", "-89|3|fair"},
        {"csq", "+CSQ: 99999999999999,99", "fail"}, {"csq", "+CSQ: ,99", "fail"}, {"csq", "\r\nERROR\r\n", "fail"},
        {"cesq", "+CESQ: 99,99,36,30,255,255", "-85|-95"}, {"cesq", "+CESQ: 99,99,0,49,255,255", "-121|0"},
        {"cesq", "+CESQ: 99,99,96,0,255,255", "-25|-245"}, {"cesq", "+CESQ: 99,99,255,255,255,255", "0|1"},
        {"cesq", "+CESQ: 99,99,97,50,255,255", "0|1"}, {"cesq", "+CESQ: 40,0,255,255,255,255", "0|1"},
        {"cesq", "+CESQ: 99,99", "fail"}, {"cesq", "\r\nERROR\r\n", "fail"},
        {"creg", "+CREG: 2,1,\"1A2B\",\"00C3D4E5\",2", "1|6699|12834021|2"},
        {"creg", "+CREG: 2,5,1a2b,c3d4e5,0", "5|6699|12834021|0"}, {"creg", "+CREG: 0,1", "1|-1|-1|-1"},
        {"creg", "+CREG: 1,\"1A2B\",\"00C3D4E5\",2\r\n+CREG: 2,1,\"0001\",\"00000002\",7\r\n", "1|1|2|7"},
        {"creg", "+CREG: 2,1,\"12345\",\"123456789\",2", "1|-1|-1|2"}, {"creg", "+CREG: 2,1,\"XYZ\",\"C3\",99", "1|-1|195|-1"},
        {"creg", "+CREG: 2", "fail"},
        {"value", "RSSI_DBM=-70,RSCP_DBM=-85,ECIO_TENTHS=-60,BEARER=4,LAC=6699,CI=12834021", "-70|-85|-60|4|1A2B/C3D4E5"},
        {"value", "RSSI_DBM=-50,RSCP_DBM=-122,ECIO_TENTHS=5,BEARER=9,LAC=70000,CI=5", "0|0|1|8|"},
        {"value", "RSSI_DBM='-70',LAC=1,CI=-1", "0|0|1|8|"},
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(Read(row.kind, row.input), row.expected) << row.input;
}

TEST(Signal, BestOfTheLastMinute) {
    // "ms:dBm ..." fed in order, then the best at the time asked.
    // clang-format off
    const struct { const char* readings; qint64 now; int best; } rows[] = {
        {"", 0, 0}, {"0:0", 0, 0}, {"0:-80 1000:-70 2000:-90", 2000, -70},
        {"0:-80 1000:-70 2000:-90", 60999, -70}, {"0:-80 1000:-70 2000:-90", 61000, -90}, {"0:-80 1000:-70 2000:-90", 62000, 0},
        {"0:-60 30000:-75 59000:-75", 60000, -75}, {"50000:-60 1000:-90", 1000, -90}, // the clock went back
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.readings);
        SignalPeakWindow window;
        for (const QString& reading : QString(row.readings).split(' ', Qt::SkipEmptyParts))
            window.add(reading.section(':', 0, 0).toLongLong(), reading.section(':', 1).toInt());
        EXPECT_EQ(window.best(row.now), row.best);
    }
}

QString MinuteText(const SignalMinute& m) {
    return QStringLiteral("%1 %2/%3/%4/%5 %6 %7")
        .arg(m.minute.toString("hh:mm"), N(m.averageDbm), N(m.bestDbm), N(m.worstDbm), N(m.readings),
             N(m.bearer), m.lac < 0 ? QStringLiteral("-") : N(m.lac) + "/" + N(m.ci));
}

TEST(Signal, HistoryGathersReadingsPerMinute) {
    const QDate day(2026, 3, 10);
    // "hh:mm:ss dBm bearer lac ci" readings; the minutes written, then the changes of bearer (B) or cell (C).
    // clang-format off
    const struct { const char* readings; const char* minutes; const char* changes; } rows[] = {
        {"10:00:05 -70 4 1 2;10:00:20 -80 4 1 2;10:00:40 -75 4 1 2", "10:00 -75/-70/-80/3 4 1/2", ""},
        {"10:00:05 -70 4 - -;10:00:50 -71 4 - -", "10:00 -71/-70/-71/2 4 -", ""},
        {"10:00:05 0 8 - -;10:00:10 -91 3 - -", "10:00 -91/-91/-91/1 3 -", ""},
        {"10:00:05 0 8 - -", "", ""},
        {"10:00:00 -70 4 1 2;10:01:00 -72 3 1 2;10:02:00 -74 3 1 3;10:03:00 0 8 - -;10:05:59 -70 4 1 3",
         "10:00 -70/-70/-70/1 4 1/2;10:01 -72/-72/-72/1 3 1/2;10:02 -74/-74/-74/1 3 1/3;10:05 -70/-70/-70/1 4 1/3",
         "10:01 B;10:02 C;10:05 B"},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.readings);
        TempHome home;
        SignalHistory history;
        for (const QString& reading : QString(row.readings).split(';')) {
            const QStringList f = reading.split(' ');
            const auto cell = [](const QString& v) { return v == "-" ? -1 : v.toLongLong(); };
            history.add({f[1].toInt(), 0, 1, f[2].toInt(), cell(f[3]), cell(f[4])},
                        QDateTime(day, QTime::fromString(f[0], "hh:mm:ss")));
        }
        ASSERT_TRUE(history.flush());
        // Read back from the file by another instance, as the statistics tab does.
        const QList<SignalMinute> minutes = SignalHistory().day(day);
        QStringList written, changes;
        for (const SignalMinute& minute : minutes)
            written << MinuteText(minute);
        for (const SignalChange& change : SignalHistory::changesOf(minutes))
            changes << change.minute.toString("hh:mm") + " " + (change.bearer ? "B" : "") +
                           (change.cell ? "C" : "");
        EXPECT_EQ(written.join(';').toStdString(), row.minutes);
        EXPECT_EQ(changes.join(';').toStdString(), row.changes);
    }
}

TEST(Signal, HistoryKeepsAMonthAndSetsDamagedDaysAside) {
    TempHome home;
    SignalHistory history;
    const QDate today(2026, 3, 10);
    QDir().mkpath(history.folder());
    for (const QDate& old : {today.addDays(-32), today.addDays(-31)})
        TempHome::writeFile(history.dayPath(old), "<plist/>");
    TempHome::writeFile(history.dayPath(today), "not a property list");
    history.add(SignalSample{-80, 0, 1, 4, 1, 2}, QDateTime(today, QTime(9, 0)));
    ASSERT_TRUE(history.flush());
    EXPECT_FALSE(QFile::exists(history.dayPath(today.addDays(-32))));
    EXPECT_TRUE(QFile::exists(history.dayPath(today.addDays(-31))));
    EXPECT_EQ(QDir(history.folder()).entryList({"2026-03-10.plist.damaged-*"}).size(), 1);
    EXPECT_EQ(history.day(today).size(), 1);
}

} // namespace
