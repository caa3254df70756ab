#include "CNSLog.h"
#include "TempHome.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

QStringList logLines(const QString& path) {
    return QString::fromUtf8(TempHome::readFile(path)).split('\n', Qt::SkipEmptyParts);
}

struct Sample {
    void log(int level) { CNSLOG(level, "level %d, %s", level, "text"); }
};

TEST(CNSLog, NothingWithoutTheMarker) {
    TempHome home;
    CNSLOG(2, "parameter is null");
    CNSLOG_TRACE();
    g_CNSLog.MLog("text");
    EXPECT_TRUE(g_ST_LOG_ALL == 0 && g_CNSLog.logFilePath().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(home.path() + "/.local/state"));
}

TEST(CNSLog, MarkerSwitchesTheDayFileOn) {
    TempHome home;
    const QString path = home.openLog();
    const QDate today = QDate::currentDate();
    EXPECT_EQ(path, home.path() + QString::asprintf("/.local/state/dialtone/LOG_%02d_%02d_%04d.log",
                                                    today.day(), today.month(), today.year()));
    EXPECT_EQ(g_ST_LOG_ALL, 1);
    ASSERT_TRUE(QFileInfo::exists(path));

    Sample().log(2);
    const QStringList lines = logLines(path);
    ASSERT_EQ(lines.size(), 1);
    const QRegularExpression layout(
        R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d [+-]\d{4} \[-CNSLOG_ERROR-\]: cnslog_test\.cpp:\d+ )"
        R"(\{anonymous\}::Sample::log VER:)" DIALTONE_VERSION R"(-->>: level 2, text$)");
    EXPECT_TRUE(layout.match(lines[0]).hasMatch()) << lines[0].toStdString();

    // A later start on the same day appends to the same file.
    g_CNSLog.initialize();
    Sample().log(0);
    EXPECT_EQ(logLines(path).size(), 2);

    // Removing the marker switches it off at the next start.
    QFile::remove(home.configFile("OPENLOG"));
    g_CNSLog.initialize();
    Sample().log(2);
    EXPECT_EQ(logLines(path).size(), 2);
}

TEST(CNSLog, LevelsAndTheirSwitches) {
    TempHome home;
    const QString path = home.openLog();
    g_ST_LOG_FATAL_ERROR = 0; // never consulted: level 3 follows the error switch
    // clang-format off
    const struct { int level; const char* tag; /* nullptr: not written */ } rows[] = {
        {0, "[-CNSLOG-]:"}, {1, "[-CNSLOG_WARNNING-]:"}, {2, "[-CNSLOG_ERROR-]:"}, {3, "[-CNSLOG_FATAL_ERROR-]:"},
        {4, "[-CNSLOG_FOR_TEST-]:"}, {5, nullptr}, {6, "[-CNSLOG-]:"}, {-1, nullptr},
    };
    // clang-format on
    for (const auto& row : rows) {
        const qsizetype before = logLines(path).size();
        Sample().log(row.level);
        const QStringList lines = logLines(path);
        ASSERT_EQ(lines.size(), before + (row.tag ? 1 : 0)) << row.level;
        EXPECT_TRUE(!row.tag || lines.last().contains(QString(" ") + row.tag + " "))
            << lines.last().toStdString();
    }

    // Switching a level's flag off silences it; level 3 goes with level 2.
    g_ST_LOG_ERROR = 0;
    g_ST_LOG_FATAL_ERROR = 1;
    const qsizetype before = logLines(path).size();
    Sample().log(2);
    Sample().log(3);
    EXPECT_EQ(logLines(path).size(), before);
}

TEST(CNSLog, ShowSwitchesAndFunctionTrace) {
    TempHome home;
    const QString path = home.openLog();
    g_SHOW_FILE_NAME = 0;
    g_SHOW_LINE_NUMBER = 0;
    g_SHOW_FUNCTION = 0;
    CNSLOG(1, "bare");
    g_CNSLog.PrintCurrentFunction("void WorkThread::initWrokThread()");
    g_ST_LOG_TRACE_ENTER = 0;
    g_CNSLog.PrintCurrentFunction("void WorkThread::detect()");

    const QStringList lines = logLines(path);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].endsWith("[-CNSLOG_WARNNING-]: :  VER:" DIALTONE_VERSION "-->>: bare"))
        << lines[0].toStdString();
    EXPECT_TRUE(lines[1].endsWith(" Enter Function:WorkThread::initWrokThread")) << lines[1].toStdString();
}

TEST(CNSLog, ThreadsAppendWholeLines) {
    TempHome home;
    const QString path = home.openLog();
    constexpr int kThreads = 4;
    constexpr int kLines = 200;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([t] {
            for (int i = 0; i < kLines; ++i)
                CNSLOG(0, "thread %d line %d %s", t, i, "0123456789012345678901234567890123456789");
        });
    for (auto& thread : threads)
        thread.join();
    const QStringList lines = logLines(path);
    ASSERT_EQ(lines.size(), kThreads * kLines);
    const QRegularExpression whole(R"(-->>: thread \d line \d+ 0123456789012345678901234567890123456789$)");
    for (const QString& line : lines)
        ASSERT_TRUE(whole.match(line).hasMatch()) << line.toStdString();
}

} // namespace
